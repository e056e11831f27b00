// Exchanges arrays with a numpy script through raw float64 files in a temporary directory (the
// test machines are little-endian, as numpy's '<f8').
#include "NumpyReference.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <unistd.h>

namespace fs = std::filesystem;

namespace nvdl::test {
namespace {

struct TemporaryDirectory {
    TemporaryDirectory()
    {
        std::string pattern = (fs::temp_directory_path() / "nvdl-numpy-XXXXXX").string();
        if (mkdtemp(pattern.data()) != nullptr)
            path = pattern;
    }
    ~TemporaryDirectory()
    {
        std::error_code ignored;
        if (!path.empty())
            fs::remove_all(path, ignored);
    }
    fs::path path;
};

void writeDoubles(const fs::path& file, const std::vector<double>& values)
{
    const auto bytes = static_cast<std::streamsize>(values.size() * sizeof(double));
    std::ofstream(file, std::ios::binary).write(reinterpret_cast<const char*>(values.data()), bytes);
}

std::vector<double> readDoubles(const fs::path& file)
{
    std::vector<double> values(fs::file_size(file) / sizeof(double));
    const auto bytes = static_cast<std::streamsize>(values.size() * sizeof(double));
    std::ifstream(file, std::ios::binary).read(reinterpret_cast<char*>(values.data()), bytes);
    return values;
}

}  // namespace

std::vector<double> runNumpy(const std::string& body, const std::vector<std::vector<double>>& inputs)
{
    TemporaryDirectory dir;
    if (dir.path.empty()) {
        ADD_FAILURE() << "cannot create a temporary directory";
        return {};
    }
    std::ofstream(dir.path / "reference.py")
        << "import sys\nimport numpy as np\ninputs = [np.fromfile(p, dtype='<f8') for p in sys.argv[2:]]\n" << body
        << "\nnp.asarray(result, dtype='<f8').ravel().tofile(sys.argv[1])\n";
    std::string command = "/usr/bin/python3 " + (dir.path / "reference.py").string() + " " +
                          (dir.path / "result.bin").string();
    for (size_t i = 0; i < inputs.size(); ++i) {
        fs::path file = dir.path / ("input" + std::to_string(i) + ".bin");
        writeDoubles(file, inputs[i]);
        command += " " + file.string();
    }
    int status = std::system(command.c_str());
    if (status != 0) {
        ADD_FAILURE() << "numpy reference failed (" << status << "): " << command;
        return {};
    }
    return readDoubles(dir.path / "result.bin");
}

}  // namespace nvdl::test
