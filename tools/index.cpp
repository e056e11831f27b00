// nvdl index FILE: makes the min/max caches of every used channel of a recording, so that reduced
// reads of long spans need not read the samples. One tab-separated line per channel: its kind
// ("input" or "tacho"), number (tachos behind the inputs), name, the scans the cache covers and the
// cache file ("-" when it could not be written, which makes the exit status 1).
#include <cstdio>
#include <string>
#include <vector>

#include "access/MinMaxCacheFormat.h"
#include "access/MinMaxCacheIndex.h"
#include "cli/Arguments.h"
#include "cli/Failure.h"
#include "commands.h"
#include "platform/CodePage.h"

namespace nvdl::tool {

int index(int argc, char** argv) {
    Arguments args;
    std::string problem;
    if (!args.parse(argc, argv, {}, {}, problem) || args.positional().size() != 1)
        return usageFailure("index", indexCommand.usage, problem);
    const std::string& file = args.positional()[0];
    const std::string recording = narrow(utf8ToUtf16(file));
    std::vector<access::IndexedChannel> channels;
    std::string reason;
    if (!access::indexRecording(recording, channels, reason)) return failure("index", file, reason);
    int status = 0;
    for (const access::IndexedChannel& c : channels) {
        const std::string cache =
            c.written ? pathFromAnsi(access::mmx::cachePath(recording, c.kind, c.channel)).string() : "-";
        std::printf("%s\t%ld\t%s\t%lld\t%s\n", c.kind == 1 ? "input" : "tacho", c.channel,
                    utf16ToUtf8(widen(c.name)).c_str(), static_cast<long long>(c.scans), cache.c_str());
        if (!c.written) status = 1;
    }
    return status;
}

const CommandEntry indexCommand{"index", index, "index FILE      make the min/max caches of a recording's used channels beside it (FILE.in<N>.mmx, FILE.tacho<N>.mmx), so that reduced reads of long spans skip the samples: a line per channel (kind, number, name, scans covered, cache file)"};

}  // namespace nvdl::tool
