// Exchanges arrays with a numpy script through raw little-endian float64 files in a temporary
// directory.
#include "NumpyReference.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
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
    std::ofstream out(file, std::ios::binary);
    for (double v : values) {
        unsigned char bytes[sizeof(double)];
        std::memcpy(bytes, &v, sizeof v);  // the test machines are little-endian, as numpy's '<f8'
        out.write(reinterpret_cast<const char*>(bytes), sizeof bytes);
    }
}

std::vector<double> readDoubles(const fs::path& file)
{
    std::ifstream in(file, std::ios::binary);
    std::vector<char> bytes((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    std::vector<double> values(bytes.size() / sizeof(double));
    std::memcpy(values.data(), bytes.data(), values.size() * sizeof(double));
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
    std::ofstream script(dir.path / "reference.py");
    script << "import sys\nimport numpy as np\n"
              "inputs = [np.fromfile(p, dtype='<f8') for p in sys.argv[2:]]\n"
           << body << "\nnp.asarray(result, dtype='<f8').ravel().tofile(sys.argv[1])\n";
    script.close();
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
