// Batches: a walk over the input tree (a list of folders still to read, not
// recursion), then a pool of child processes, each drawing one file with its
// messages kept in a file of its own for the summary.
#include "batch.h"

#include <dirent.h>
#include <errno.h>
#include <fcntl.h>
#include <signal.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <map>
#include <string>
#include <vector>

#include "model.h"

namespace {

// Files under dir the model layer reads, as paths relative to dir, sorted.
bool ModelFiles(const std::string& dir, std::vector<std::string>* out) {
  std::vector<std::string> folders{""};
  for (size_t i = 0; i < folders.size(); i++) {
    const std::string rel = folders[i];
    DIR* d = opendir((dir + "/" + rel).c_str());
    if (d == nullptr) {
      if (i == 0) return false;
      continue;
    }
    while (const dirent* e = readdir(d)) {
      if (e->d_name[0] == '.') continue;
      const std::string path = rel + e->d_name;
      struct stat st;
      if (stat((dir + "/" + path).c_str(), &st) != 0) continue;
      if (S_ISDIR(st.st_mode))
        folders.push_back(path + "/");
      else if (S_ISREG(st.st_mode) && ModelExtensionKnown(path.c_str()))
        out->push_back(path);
    }
    closedir(d);
  }
  std::sort(out->begin(), out->end());
  return true;
}

// Makes every folder of path's parent.
void MakeParents(const std::string& path) {
  for (size_t at = path.find('/', 1); at != std::string::npos; at = path.find('/', at + 1))
    mkdir(path.substr(0, at).c_str(), 0777);
}

// The last line a child wrote to its message file: why it failed.
std::string LastLine(const std::string& file) {
  FILE* f = fopen(file.c_str(), "r");
  std::string last, line;
  char buffer[1024];
  while (f != nullptr && fgets(buffer, sizeof buffer, f) != nullptr) {
    line = buffer;
    while (!line.empty() && line.back() == '\n') line.pop_back();
    if (!line.empty()) last = line;
  }
  if (f != nullptr) fclose(f);
  return last;
}

void Bar(size_t done, size_t total, size_t failed) {
  const int width = 40, filled = int(done * width / (total ? total : 1));
  fprintf(stderr, "\r[%.*s%*s] %zu/%zu, %zu failed", filled, "########################################",
          width - filled, "", done, total, failed);
  if (done == total) fputc('\n', stderr);
  fflush(stderr);
}

}  // namespace

int RunBatch(const char* dir, const char* outDir, int jobs, bool quiet, BatchRender render, void* user) {
  std::vector<std::string> files;
  if (!ModelFiles(dir, &files)) {
    fprintf(stderr, "e3d-render: %s: cannot read the folder\n", dir);
    return kModelUnreadable;
  }
  const bool bar = !quiet && isatty(2);
  struct Running {
    size_t file;
    std::string messages;
  };
  std::map<pid_t, Running> running;
  std::vector<std::string> failures;
  size_t next = 0, done = 0, lost = 0;
  fflush(nullptr);
  while (next < files.size() || !running.empty()) {
    while (next < files.size() && int(running.size()) < jobs) {
      const size_t index = next++;
      const std::string input = std::string(dir) + "/" + files[index];
      const std::string output = std::string(outDir) + "/" + files[index] + ".png";
      MakeParents(output);
      char messages[] = "/tmp/e3d-batch-XXXXXX";
      const int fd = mkstemp(messages);
      const pid_t child = fork();
      if (child == 0) {
        if (fd >= 0) dup2(fd, 2);
        const int devnull = open("/dev/null", O_WRONLY);
        if (devnull >= 0) dup2(devnull, 1);
        _exit(render(input.c_str(), output.c_str(), user));
      }
      if (fd >= 0) close(fd);
      if (child < 0) {
        failures.push_back(files[index] + ": no process to draw it (" + strerror(errno) + ")");
        unlink(messages);
        done++;
        continue;
      }
      running[child] = {index, messages};
    }
    int status = 0;
    const pid_t child = wait(&status);
    if (child < 0) {
      if (errno == EINTR) continue;
      break;
    }
    auto it = running.find(child);
    if (it == running.end()) continue;
    const std::string& name = files[it->second.file];
    const int code = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    if (code == kModelFacesDropped) lost++;
    if (code != kModelOk && code != kModelFacesDropped) {
      std::string why = LastLine(it->second.messages);
      if (WIFSIGNALED(status)) why = std::string("killed by ") + strsignal(WTERMSIG(status));
      failures.push_back(name + ": " + (why.empty() ? "exit code " + std::to_string(code) : why));
    }
    unlink(it->second.messages.c_str());
    running.erase(it);
    done++;
    if (bar) Bar(done, files.size(), failures.size());
  }
  if (!quiet || !failures.empty()) {
    printf("%zu files: %zu drawn (%zu with polygons lost), %zu failed\n", files.size(),
           files.size() - failures.size(), lost, failures.size());
    for (const std::string& f : failures) printf("  failed %s\n", f.c_str());
  }
  return !failures.empty() ? 8 : lost > 0 ? kModelFacesDropped : kModelOk;
}
