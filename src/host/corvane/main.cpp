#include <tcl.h>

#include "tcltasks/core/Omu_commontasks.h"

int main(int argc, char** argv) {
    Tcl_Main(argc, argv, Omu_commontasks_Init);
}
