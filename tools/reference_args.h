#pragma once
// The command line of the reference generators: --out FILE and, optionally, --ephe DIR (the
// folder of the Swiss Ephemeris files, the Debian packages' one unless told). The ephemeris path
// is set before the generator computes anything.
#include <swephexp.h>

#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>

namespace reference {

inline std::string output_file(int argc, char** argv, const char* program) {
    std::string out, ephemeris = "/usr/share/libswe/ephe";
    for (int i = 1; i < argc; ++i) {
        const std::string_view arg = argv[i];
        if (arg == "--out" && i + 1 < argc) {
            out = argv[++i];
        } else if (arg == "--ephe" && i + 1 < argc) {
            ephemeris = argv[++i];
        } else {
            out.clear();
            break;
        }
    }
    if (out.empty()) {
        std::fprintf(stderr, "usage: %s --out FILE [--ephe DIR]\n", program);
        std::exit(2);
    }
    swe_set_ephe_path(ephemeris.c_str());
    return out;
}

} // namespace reference
