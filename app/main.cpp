#include "app/demarrage.h"
#include "platform/memoire.h"

int main(int argc, char** argv) {
    PrepareMemoire();
    return Principal(argc, argv);
}
