#!/usr/bin/env bash
# Pictures of the desktop program as a user sees it, to look at:
#   bash bench/captures.sh [folder]   (default build/captures)
# - the main window with each element of the example project selected, from
#   the window tests (offscreen, QWidget::grab);
# - the real program started under Xvfb on the example project, its screen
#   taken with xwd.
# Needs a build with Qt (build/), and xvfb, x11-apps and netpbm for the second.
set -euo pipefail
cd "$(dirname "$0")/.."
sortie=$(realpath -m "${1:-build/captures}")
mkdir -p "$sortie"
TESS_CAPTURES="$sortie" QT_QPA_PLATFORM=offscreen build/tests/shell/tests_shell \
  --gtest_filter=Fenetre.LeVoletMontreLApercuDeChaqueElement > /dev/null 2>&1
if command -v xvfb-run > /dev/null && command -v xwd > /dev/null; then
  exemple=$(mktemp -d)
  cp examples/demo/* "$exemple"
  programme=$(realpath build/tessellarium)
  (cd "$exemple" && "$programme" "-tset src=niveau +16c:-tset src=decor:-b16 src=titre" 2> /dev/null)
  xvfb-run -a -s "-screen 0 800x500x24" bash -c "
    cd '$exemple' && '$programme' projet.tsl & sleep 3
    xwd -root -silent | xwdtopnm 2> /dev/null | pnmtopng > '$sortie/programme.png'
    kill %1" 2> /dev/null
  rm -rf "$exemple"
fi
ls "$sortie"
