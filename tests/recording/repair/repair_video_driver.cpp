// Runs the --repair-video command-line mode on its own, as the mirabend
// executable would.
#include "recording/repair/RepairVideoTool.h"

int main(int argc, char** argv) {
    return mirabend::kRepairVideoTool.run(argc, argv);
}
