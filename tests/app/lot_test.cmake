# Placeholder, replaced below.
