#include "Interruption.h"
#include "Program.h"

#include <csignal>
#include <string>
#include <vector>

int main(int argc, char* argv[])
{
    // A reader that has seen enough (head) is no failure: writing reports it, nothing kills us.
    std::signal(SIGPIPE, SIG_IGN);
    // Likewise a file that grows longer than a limit set for it.
    std::signal(SIGXFSZ, SIG_IGN);
    Interruption::listen();
    return runProgram(std::vector<std::string>(argv + (argc > 0 ? 1 : 0), argv + argc));
}
