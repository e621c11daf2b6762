// Feeds every file of the given directories (or the given files) to the
// target once: the checked-in corpus as an ordinary test.
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size);

int main(int argc, char** argv) {
  namespace fs = std::filesystem;
  int files = 0;
  for (int i = 1; i < argc; ++i) {
    std::vector<fs::path> paths;
    if (fs::is_directory(argv[i])) {
      for (const auto& entry : fs::directory_iterator(argv[i]))
        if (entry.is_regular_file()) paths.push_back(entry.path());
    } else {
      paths.emplace_back(argv[i]);
    }
    for (const fs::path& path : paths) {
      std::ifstream file(path, std::ios::binary);
      const std::vector<char> bytes{std::istreambuf_iterator<char>(file), {}};
      if (!file.good() && !file.eof()) {
        std::fprintf(stderr, "cannot read %s\n", path.string().c_str());
        return 1;
      }
      LLVMFuzzerTestOneInput(reinterpret_cast<const uint8_t*>(bytes.data()), bytes.size());
      ++files;
    }
  }
  std::printf("%d inputs replayed\n", files);
  return files > 0 ? 0 : 1;
}
