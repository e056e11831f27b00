// nvdl export FILE OUT: the measurements of a workspace file, a project's workspace or a recording
// as CSV text (OUT ending in .csv) or as a universal file (.uff or .unv), which also carries the
// workspace's geometries and modes. `--measurement` picks measurements by position or name (given
// again or as a comma list); `--workspace` picks a project's workspace; `--nodes 15` writes the
// nodes in the older node dataset.
#include <algorithm>
#include <cstring>
#include <filesystem>

#include "cli/Arguments.h"
#include "cli/Failure.h"
#include "cli/FileKind.h"
#include "commands.h"
#include "exchange/Csv.h"
#include "exchange/SourceFile.h"
#include "exchange/UffFields.h"
#include "exchange/UffFile.h"
#include "exchange/UffMapping.h"
#include "frame/LateBound.h"
#include "platform/CodePage.h"
#include "project/Workspace.h"

namespace nvdl::tool {

namespace {

constexpr const char* kUsage =
    "export FILE OUT [--measurement N]... [--workspace N] [--nodes 15|2411]   measurements (and geometry and modes) of a "
    "workspace, project or recording to CSV (.csv) or a universal file (.uff, .unv)";


// Every value of `--measurement`, however often it is given, split at commas.
std::vector<std::string> measurementChoices(int argc, char** argv) {
    std::vector<std::string> out;
    const std::string option = "--measurement";
    for (int i = 0; i < argc; ++i) {
        std::string value;
        if (argv[i] == option && i + 1 < argc) value = argv[++i];
        else if (std::strncmp(argv[i], "--measurement=", option.size() + 1) == 0) value = argv[i] + option.size() + 1;
        else continue;
        for (std::size_t at = 0; at <= value.size();) {
            const std::size_t comma = std::min(value.find(',', at), value.size());
            if (comma > at) out.push_back(value.substr(at, comma - at));
            at = comma + 1;
        }
    }
    return out;
}

std::string nameOf(IDispatch* object) {
    Variant v;
    if (FAILED(latebound::get(object, u"Name", &v)) || FAILED(v.changeType(VT_BSTR))) return {};
    return narrow(bstrView(v.bstrVal));
}

// The measurements chosen, in the order chosen; all of them without a choice.
bool chooseMeasurements(CObjectCollection& all, const std::vector<std::string>& choices, std::vector<IDispatch*>& out,
                        std::string& error) {
    if (choices.empty()) {
        for (std::size_t i = 0; i < all.size(); ++i) out.push_back(all.itemAt(i));
        if (out.empty()) error = "the workspace holds no measurement";
        return !out.empty();
    }
    for (const std::string& choice : choices) {
        IDispatch* found = nullptr;
        if (const auto index = exchange::uff::parseInteger(choice); index && *index >= 0 && static_cast<std::size_t>(*index) < all.size())
            found = all.itemAt(static_cast<std::size_t>(*index));
        for (std::size_t i = 0; !found && i < all.size(); ++i)
            if (nameOf(all.itemAt(i)) == narrow(utf8ToUtf16(choice))) found = all.itemAt(i);
        if (!found) {
            error = "no measurement \"" + choice + "\"";
            return false;
        }
        out.push_back(found);
    }
    return true;
}

std::vector<IDispatch*> itemsOf(CObjectCollection& list) {
    std::vector<IDispatch*> out;
    for (std::size_t i = 0; i < list.size(); ++i) out.push_back(list.itemAt(i));
    return out;
}

}  // namespace

int exportFile(int argc, char** argv) {
    Arguments args;
    std::string problem;
    if (!args.parse(argc, argv, {"measurement", "workspace", "nodes"}, {"quiet"}, problem))
        return usageFailure("export", kUsage, problem);
    if (args.positional().size() != 2) return usageFailure("export", kUsage);
    const std::string& file = args.positional()[0];
    const std::string& out = args.positional()[1];
    const std::string format = lowerExtension(out);
    if (format != ".csv" && format != ".uff" && format != ".unv")
        return usageFailure("export", kUsage, "OUT must end in .csv, .uff or .unv");
    const std::string nodes = args.value("nodes").value_or("2411");
    if (nodes != "15" && nodes != "2411") return usageFailure("export", kUsage, "--nodes takes 15 or 2411");

    exchange::OpenedFile opened;
    std::string error;
    if (!exchange::openFile(file, opened, error)) return failure("export", file, error);
    CWorkspace* workspace = exchange::chooseWorkspace(opened, args.value("workspace").value_or(""), error);
    if (!workspace) return failure("export", file, error);
    std::vector<IDispatch*> measurements;
    if (!chooseMeasurements(workspace->measurements(), measurementChoices(argc, argv), measurements, error))
        return failure("export", file, error);

    if (format == ".csv") {
        if (!exchange::writeMeasurementsCsv(measurements, out, error)) return failure("export", out, error);
        return 0;
    }
    exchange::uff::Content content{measurements, itemsOf(workspace->geometries()), itemsOf(workspace->modes())};
    exchange::uff::File uff;
    if (!exchange::uff::fileFromContent(content, nodes == "2411", uff, error)) return failure("export", file, error);
    if (!exchange::uff::writeFile(out, uff, error)) return failure("export", out, error);
    return 0;
}

const CommandEntry exportCommand{"export", exportFile, kUsage};

}  // namespace nvdl::tool
