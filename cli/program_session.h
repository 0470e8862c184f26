#pragma once
// What the commands that draw or run need around a session: a Qt application without a display,
// a program folder with the stores, and a started session with the event of the options.
#include "event_options.h"
#include "stores.h"

#include "session/session.h"

#include <QGuiApplication>

#include <cstdlib>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>

namespace celestark::cli {

// A Qt application without a display, for the fonts and the painting, for as long as a command
// runs.
class HeadlessApplication {
  public:
    // A program that has its application already (the tests) keeps it.
    HeadlessApplication() {
        if (QGuiApplication::instance()) return;
        setenv("QT_QPA_PLATFORM", "offscreen", 0);
        app_ = std::make_unique<QGuiApplication>(argc_, argv_);
    }

  private:
    // A private runtime folder where the system gives none, as Qt wants one; removed after the
    // application has gone.
    struct RuntimeFolder {
        char path[32] = "/tmp/celestark-runtime-XXXXXX";
        bool made = false;
        RuntimeFolder() {
            if (!std::getenv("XDG_RUNTIME_DIR") && mkdtemp(path)) {
                made = true;
                setenv("XDG_RUNTIME_DIR", path, 1);
            }
        }
        ~RuntimeFolder() {
            std::error_code ec;
            if (made) std::filesystem::remove_all(path, ec);
        }
    } runtime_;
    int argc_ = 1;
    char name_[14] = "celestark-cli";
    char* argv_[2] = {name_, nullptr};
    std::unique_ptr<QGuiApplication> app_;
};

// A program folder for the command: the current one when it holds option.mdb, otherwise a
// temporary one with the stores the build made (removed when the command ends).
class ProgramFolder {
  public:
    bool prepare(std::string& error) {
        std::error_code ec;
        if (std::filesystem::exists(std::filesystem::current_path() / "option.mdb", ec)) {
            path_ = std::filesystem::current_path();
            return true;
        }
        const std::filesystem::path built = built_stores_folder();
        if (built.empty() || !std::filesystem::exists(built / "option.mdb", ec)) {
            error = "no option.mdb here and no built stores beside the program: run "
                    "`celestark-cli init DIR` and render from DIR";
            return false;
        }
        char pattern[] = "/tmp/celestark-render-XXXXXX";
        if (!mkdtemp(pattern)) {
            error = "cannot make a temporary program folder";
            return false;
        }
        path_ = pattern;
        temporary_ = true;
        // The large tables are only read: linked, not copied.
        for (const char* name : {"outer3.mdb", "asteroid.mdb", "stars.mdb"})
            if (std::filesystem::exists(built / name, ec))
                std::filesystem::create_symlink(built / name, path_ / name, ec);
        std::filesystem::copy_file(built / "option.mdb", path_ / "option.mdb", ec);
        if (ec) {
            error = "cannot copy option.mdb: " + ec.message();
            return false;
        }
        return true;
    }
    ~ProgramFolder() {
        std::error_code ec;
        if (temporary_) std::filesystem::remove_all(path_, ec);
    }
    const std::filesystem::path& path() const { return path_; }

  private:
    std::filesystem::path path_;
    bool temporary_ = false;
};

// A started session with the event of the options in slot 1 and the chart settings asked for.
struct Prepared {
    Session s;
    ConsoleSink sink;
    bool fatal = false;
};

// Starts the session in `folder`, puts the event of the options into slot 1 and takes --zodiac,
// --houses and --colour-set; false with the reason.
bool prepare_session(const Options& o, const std::filesystem::path& folder, Prepared& p,
                     std::string& error);

// A window's control set from the command line: `set` takes a control's name and its value and
// returns why it refused them, or nothing.
using ControlSetter = std::function<std::string(const std::string&, const std::string&)>;
// Takes --set NAME=VALUE,... through `set`; false with the reason at the first pair refused.
bool apply_set_option(const Options& o, const ControlSetter& set, std::string& error);

} // namespace celestark::cli
