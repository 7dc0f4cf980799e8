#pragma once
// Runs a piece of a test in a child process, for what the test program itself must not
// suffer: a file-size limit, or a read that might never end.
#include <functional>

#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace child {

// The body's answer as the child's exit status, 0 for true and 1 for false, or 128 plus
// the signal that ended the child. The child has `seconds` before SIGALRM ends it, and,
// with a fileLimit above 0, may make no file longer than that many bytes.
inline int Run(const std::function<bool()>& body, unsigned seconds, rlim_t fileLimit = 0) {
    const pid_t pid = fork();
    if (pid == 0) {
        alarm(seconds);
        const rlimit limit{fileLimit, fileLimit};
        if (fileLimit > 0 && setrlimit(RLIMIT_FSIZE, &limit) != 0) _exit(2);
        _exit(body() ? 0 : 1);
    }
    int status = 0;
    if (pid < 0 || waitpid(pid, &status, 0) != pid) return -1;
    return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

} // namespace child
