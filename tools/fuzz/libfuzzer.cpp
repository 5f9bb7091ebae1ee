/// The entry of a coverage-guided run, built by the preset `fuzz`; the target is named by HCN_FUZZ_TARGET.

#include "platform/base/text.h"
#include "tools/fuzz/fuzz_targets.h"

#include <QApplication>

#include <algorithm>
#include <cstdio>
#include <cstdlib>

namespace {

const FuzzTarget* target = nullptr;

} // namespace

extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv)
{
    static QApplication application(*argc, *argv);
    const QByteArray name = qgetenv("HCN_FUZZ_TARGET");
    const auto& all = fuzzTargets();
    const auto found = std::find_if(all.begin(), all.end(), [&](const FuzzTarget& each) { return name == each.name; });
    if (found == all.end()) {
        std::fputs("HCN_FUZZ_TARGET names no target\n", stderr);
        std::exit(2);
    }
    target = &*found;
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* bytes, size_t size)
{
    target->run(QByteArray(reinterpret_cast<const char*>(bytes), qsizetype(size)));
    return 0;
}
