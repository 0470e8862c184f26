// The windows of a session started in a program folder of its own, driven by the names of their
// controls as a user drives them by their captions. Boxes and questions go to a recording sink.
#pragma once

#include "../store/program_folder.h"
#include "screens/widgets/chart_display.h"
#include "screens/widgets/chart_window.h"
#include "screens/widgets/desktop.h"
#include "session/session.h"

#include <QAbstractButton>
#include <QAction>
#include <QApplication>
#include <QComboBox>
#include <QLineEdit>
#include <QTest>

#include <gtest/gtest.h>

#include <memory>
#include <string>

namespace celestark::testing {

// Einstein's birth in a card, which becomes the active one.
inline void put_einstein(Session& s, int slot) {
    EventRow& row = s.event_slots[slot];
    row = make_default_event();
    const std::pair<int, const char*> cells[] = {{col::surname, "Einstein"},
                                                 {col::firstname, "Albert"},
                                                 {col::event, "Birth"},
                                                 {col::place, "Ulm"},
                                                 {col::day, "14"},
                                                 {col::month, "3"},
                                                 {col::year, "1879"},
                                                 {col::gj, "G"},
                                                 {col::hours, "11"},
                                                 {col::mins, "30"},
                                                 {col::lz, "L"},
                                                 {col::lat_deg, "48"},
                                                 {col::lat_min, "24"},
                                                 {col::long_deg, "10"},
                                                 {col::long_ew, "E"},
                                                 {col::long_min, "0"},
                                                 {col::epoch_exists, "N"}};
    for (const auto& [column, text] : cells) row[static_cast<std::size_t>(column)] = text;
    s.event_slots.active_event = static_cast<std::int16_t>(slot);
}

class DesktopSession {
  public:
    DesktopSession() {
        start = folder.start(s);
        s.sink = &folder.sink;
        s.fatal_handler = folder.handler();
        desktop = std::make_unique<screens::Desktop>(s);
        desktop->chart_window().show();
    }
    ~DesktopSession() { desktop.reset(); }

    // The first control of a type with the name, in any window of the program.
    template <typename T> T* find(const std::string& name) {
        for (QWidget* top : QApplication::topLevelWidgets()) {
            if (top->objectName().toStdString() == name)
                if (T* self = qobject_cast<T*>(top)) return self;
            if (T* child = top->findChild<T*>(QString::fromStdString(name))) return child;
        }
        return nullptr;
    }
    // A button or a menu command by its name, pressed.
    void press(const std::string& name) {
        if (auto* b = find<QAbstractButton>(name)) {
            ASSERT_TRUE(b->isEnabled()) << name << " is disabled";
            b->click();
            return;
        }
        auto* a = find<QAction>(name);
        ASSERT_NE(a, nullptr) << "no control " << name;
        ASSERT_TRUE(a->isEnabled()) << name << " is disabled";
        a->trigger();
    }
    // Types into a field as a user does, and leaves it.
    void type(const std::string& name, const std::string& text) {
        auto* f = find<QLineEdit>(name);
        ASSERT_NE(f, nullptr) << "no field " << name;
        f->setFocus();
        f->selectAll();
        QTest::keyClicks(f, QString::fromStdString(text));
        leave(f);
    }
    void leave(QLineEdit* f) { QMetaObject::invokeMethod(f, "editingFinished"); }
    void choose(const std::string& name, const std::string& entry) {
        auto* c = find<QComboBox>(name);
        ASSERT_NE(c, nullptr) << "no list " << name;
        c->setCurrentText(QString::fromStdString(entry));
    }

    ProgramFolder folder;
    Session s;
    StartResult start;
    std::unique_ptr<screens::Desktop> desktop;
};

} // namespace celestark::testing
