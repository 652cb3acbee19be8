#include "film/child.h"

#include "ztk_system.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace zentrak::film {

pid_t startChild(const std::vector<std::string>& arguments, int input, bool quiet, int unwanted) {
    std::vector<char*> argv;
    for (const std::string& argument : arguments)
        argv.push_back(const_cast<char*>(argument.c_str()));
    argv.push_back(nullptr);

    const pid_t child = fork();
    if (child < 0)
        throw Exception("zentrak-film: no process for '%s'", arguments[0].c_str());
    if (child == 0) {
        setpgid(0, 0);
        const int nothing = open("/dev/null", O_RDWR);
        dup2(input < 0 ? nothing : input, STDIN_FILENO);
        dup2(nothing, STDOUT_FILENO);
        if (quiet)
            dup2(nothing, STDERR_FILENO);
        ::close(unwanted);
        execvp(argv[0], argv.data());
        _exit(127);
    }
    return child;
}

int waitForChild(pid_t child) {
    int status = 0;
    while (waitpid(child, &status, 0) < 0)
        if (errno != EINTR)
            return 127;
    return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

} // namespace zentrak::film
