#pragma once
// `Chart`, the main chart window: the four event cards, the event store in use, the option
// lists, and the commands of every chart and window.
#include "screens/chart_commands.h"

#include <QMainWindow>

#include <array>
#include <map>
#include <string>

class QComboBox;
class QGroupBox;
class QLabel;
class QRadioButton;

namespace celestark::screens {

class Desktop;

class ChartWindow : public QMainWindow {
    Q_OBJECT
  public:
    explicit ChartWindow(Desktop& desktop);

    // The cards, the store's caption and the option lists from the session.
    void refresh();
    // Commands that nothing answers yet are shown but disabled.
    void enable_known_commands();
    // The state of the comparison and similar choices.
    const ChartWindowState& state() const { return state_; }

  protected:
    void changeEvent(QEvent* event) override;
    void closeEvent(QCloseEvent* event) override;

  private:
    struct Card {
        QGroupBox* box = nullptr;
        QRadioButton *select = nullptr, *compare = nullptr, *similar = nullptr;
        std::array<QLabel*, 9> lines{};
    };
    void build_menus();
    QWidget* build_cards();
    QWidget* build_chart_buttons();
    QWidget* build_lists();
    void run(const std::string& command);
    void fill_lists();

    Desktop& desktop_;
    ChartWindowState state_;
    std::array<Card, 4> cards_;
    QLabel* store_caption_ = nullptr;
    std::map<std::string, QComboBox*> lists_;
    bool filling_ = false;
};

} // namespace celestark::screens
