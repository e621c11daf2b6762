// model_sweep RENDERER DIRECTORY [SECONDS]: runs the renderer on every file
// of the directory (recursively) whose extension assimp knows, each under a
// time limit. A model assimp reads with polygons must give exit 0 (or 7, drawn
// with polygons lost) and a picture with something on it (or 4, too big); one
// assimp refuses must give exit 2, one without polygons exit 3 (or 2, when
// our own reader finds it damaged). Crashes, hangs and other codes fail.
#include <dirent.h>
#include <signal.h>
#include <stdio.h>
#include <string.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <time.h>
#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <string>
#include <vector>

#include <assimp/Importer.hpp>
#include <assimp/scene.h>

#include "image_stats.h"

namespace {

constexpr uint32_t kBackground = 0xFF00FF;  // no model here is this colour

void ListFiles(const std::string& dir, std::vector<std::string>* out) {
  DIR* d = opendir(dir.c_str());
  if (d == nullptr) return;
  while (dirent* e = readdir(d)) {
    if (e->d_name[0] == '.') continue;
    const std::string path = dir + "/" + e->d_name;
    struct stat st;
    if (stat(path.c_str(), &st) != 0) continue;
    if (S_ISDIR(st.st_mode)) ListFiles(path, out);
    else if (S_ISREG(st.st_mode)) out->push_back(path);
  }
  closedir(d);
}

constexpr int kTimedOut = -1000;

// Exit code of the child, or -signal, or kTimedOut (the child is then killed).
int Wait(pid_t pid, double seconds) {
  timespec start, now;
  clock_gettime(CLOCK_MONOTONIC, &start);
  for (;;) {
    int status = 0;
    if (waitpid(pid, &status, WNOHANG) == pid)
      return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
    clock_gettime(CLOCK_MONOTONIC, &now);
    if (double(now.tv_sec - start.tv_sec) + double(now.tv_nsec - start.tv_nsec) * 1e-9 > seconds) {
      kill(pid, SIGKILL);
      waitpid(pid, &status, 0);
      return kTimedOut;
    }
    usleep(2000);
  }
}

int Run(const std::vector<std::string>& args, double seconds) {
  const pid_t pid = fork();
  if (pid == 0) {
    std::vector<char*> argv;
    for (const std::string& a : args) argv.push_back(const_cast<char*>(a.c_str()));
    argv.push_back(nullptr);
    if (freopen("/dev/null", "w", stdout) == nullptr) _exit(127);
    execv(argv[0], argv.data());
    _exit(127);
  }
  return Wait(pid, seconds);
}

enum Reading { kRefused, kNoPolygons, kPolygons, kBroken };

// What assimp itself, without any processing, makes of the file. Asked in a
// child: assimp hangs or crashes on some of the broken files.
Reading AssimpReads(const std::string& path, double seconds, double* took) {
  timespec start, end;
  clock_gettime(CLOCK_MONOTONIC, &start);
  const pid_t pid = fork();
  if (pid == 0) {
    Assimp::Importer importer;
    const aiScene* scene = importer.ReadFile(path, 0);
    if (scene == nullptr) _exit(kRefused);
    // A polygon counts when its first corners span some area.
    for (unsigned m = 0; m < scene->mNumMeshes; m++) {
      const aiMesh* mesh = scene->mMeshes[m];
      for (unsigned f = 0; f < mesh->mNumFaces; f++) {
        const aiFace& face = mesh->mFaces[f];
        if (face.mNumIndices < 3 || mesh->mVertices == nullptr) continue;
        const aiVector3D& a = mesh->mVertices[face.mIndices[0]];
        const float area = ((mesh->mVertices[face.mIndices[1]] - a) ^ (mesh->mVertices[face.mIndices[2]] - a)).SquareLength();
        if (area > 0 && std::isfinite(area)) _exit(kPolygons);
      }
    }
    _exit(kNoPolygons);
  }
  const int code = Wait(pid, seconds);
  clock_gettime(CLOCK_MONOTONIC, &end);
  *took = double(end.tv_sec - start.tv_sec) + double(end.tv_nsec - start.tv_nsec) * 1e-9;
  return code >= kRefused && code <= kPolygons ? Reading(code) : kBroken;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 3) {
    fprintf(stderr, "usage: model_sweep RENDERER DIRECTORY [SECONDS]\n");
    return 2;
  }
  const double seconds = argc > 3 ? atof(argv[3]) : 30;
  std::vector<std::string> files;
  ListFiles(argv[2], &files);
  std::sort(files.begin(), files.end());
  const std::string image = "/tmp/model_sweep_" + std::to_string(getpid()) + ".png";
  Assimp::Importer probe;
  int drawn = 0, refused = 0, empty = 0, failed = 0;
  for (const std::string& file : files) {
    const size_t dot = file.rfind('.');
    if (dot == std::string::npos || !probe.IsExtensionSupported(file.substr(dot))) continue;
    remove(image.c_str());
    const int code = Run({argv[1], file, "-o", image, "-s", "96x72", "--background", "ff00ff", "-q"}, seconds);
    double took = 0;
    const Reading reading = AssimpReads(file, seconds, &took);
    std::string fault;
    // Files on which assimp itself crashes or takes most of the time are
    // excused, whatever the renderer made of them.
    if (reading == kBroken || (code == kTimedOut && took > seconds / 2)) {
      printf("note %s: assimp itself crashes or hangs on it\n", file.c_str());
      refused++;
      continue;
    }
    if (code == kTimedOut) {
      fault = "took longer than " + std::to_string(int(seconds)) + " s";
    } else if (code < 0) {
      fault = "killed by signal " + std::to_string(-code);
    } else if (code == 0 || code == 7) {
      // 7: drawn, with polygons the file declares that no reader could read.
      ImageStats stats;
      if (!ReadImageStats(image.c_str(), kBackground, &stats) || stats.width != 96) fault = "no image";
      else if (stats.covered == 0) fault = "empty image";
      else drawn++;
    } else if (code == 2) {
      // Our own readers refuse damaged files that assimp reads as empty.
      if (reading == kPolygons) fault = "called unreadable, but assimp reads polygons in it";
      else refused++;
    } else if (code == 4) {
      refused++;  // too big: the renderer says so before it allocates
    } else if (code == 3) {
      if (reading == kPolygons) fault = "called empty, but assimp reads polygons in it";
      else empty++;
    } else {
      fault = "exit code " + std::to_string(code);
    }
    if (!fault.empty()) {
      failed++;
      printf("FAIL %s: %s\n", file.c_str(), fault.c_str());
    }
  }
  remove(image.c_str());
  printf("%s: %d drawn, %d refused by assimp, %d without polygons, %d failed\n", argv[2], drawn, refused, empty,
         failed);
  return failed == 0 ? 0 : 1;
}
