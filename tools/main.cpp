#include "tools/Commands.h"
#include "tools/System.h"

int main(int argc, char** argv) {
    tools::PrepareStreams();
    return tools::Run(argc, argv, stdout, stderr);
}
