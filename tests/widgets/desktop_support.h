// The windows of a session started in a program folder of its own, driven by the names of their
// controls as a user drives them by their captions. Boxes and questions go to a recording sink.
#pragma once

#include "../store/program_folder.h"
#include "../support/events.h"
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

// The top-level window of the name, or null.
inline QWidget* window_named(const char* name) {
    for (QWidget* top : QApplication::topLevelWidgets())
        if (top->objectName() == name) return top;
    return nullptr;
}

} // namespace celestark::testing
