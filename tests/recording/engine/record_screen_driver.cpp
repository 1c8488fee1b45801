// Runs the --record-screen command-line mode on its own, as the mirabend
// executable would, so the tests can start, signal and kill it.
#include "recording/engine/RecordScreenTool.h"

int main(int argc, char** argv)
{
    return mirabend::kRecordScreenTool.run(argc, argv);
}
