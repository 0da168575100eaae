// Runs this program anew, so that what the run measures (its peak memory above all)
// belongs to it alone.
#pragma once

#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <optional>
#include <string>
#include <vector>

// The standard output of this program run with `args`; nothing when it cannot be
// started or does not exit with status 0.
inline std::optional<std::string> OutputOfFreshRun(const std::vector<std::string>& args) {
  std::vector<char*> argv{const_cast<char*>("/proc/self/exe")};
  for (const std::string& arg : args) argv.push_back(const_cast<char*>(arg.c_str()));
  argv.push_back(nullptr);
  int pipes[2];
  if (pipe(pipes) != 0) return std::nullopt;
  std::fflush(stdout);
  const pid_t child = fork();
  if (child < 0) {
    close(pipes[0]);
    close(pipes[1]);
    return std::nullopt;
  }
  if (child == 0) {
    dup2(pipes[1], 1);
    close(pipes[0]);
    close(pipes[1]);
    execv(argv[0], argv.data());
    _exit(127);
  }
  close(pipes[1]);
  std::string output;
  char buffer[512];
  ssize_t n;
  while ((n = read(pipes[0], buffer, sizeof buffer)) > 0) output.append(buffer, static_cast<std::size_t>(n));
  close(pipes[0]);
  int status = 0;
  waitpid(child, &status, 0);
  if (!WIFEXITED(status) || WEXITSTATUS(status) != 0) return std::nullopt;
  return output;
}
