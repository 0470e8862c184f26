#include "screens/similars_screen.h"

#include "session/session.h"
#include "session/text.h"
#include "store/option_schema.h"
#include "store/option_store.h"

namespace celestark {

void SimilarsScreen::open(Session& s, int event_row) {
    params_ = similars_defaults(s);
    event_row_ = event_row;
}

std::string SimilarsScreen::set(Session& s, std::string_view name, std::string_view value,
                                MessageSink& sink) {
    const std::string why = set_similars_control(params_, name, value);
    if (!why.empty()) return why;
    std::string field, kept;
    if (similars_option_of(params_, name, field, kept)) {
        const bool number = field.find("_degs") != std::string::npos ||
                            field.find("_mins") != std::string::npos ||
                            field == "similars_similar_hits";
        const store::Value v =
            number ? store::Value(static_cast<int>(text_to_number(kept))) : store::Value(kept);
        set_option(s, store::chart_options_table, field, v, sink);
    }
    return {};
}

bool SimilarsScreen::second_panels_used() const {
    return similars_list(params_) == SimilarsList::angles;
}

std::string SimilarsScreen::panel_caption(std::string_view label) const {
    const bool second = label.ends_with("_2");
    const bool table = label.starts_with("tables");
    switch (similars_list(params_)) {
    case SimilarsList::planets:
        if (second) return "Not used for this list";
        return table ? "Table planets compared with the event planets"
                     : "Event planets compared with the table planets";
    case SimilarsList::charts:
        if (second) return "Not used for this list";
        return table ? "Table chart planets" : "Event chart planets";
    case SimilarsList::constellation:
        if (second) return "Not used for this list";
        return table ? "Table planets whose places are compared"
                     : "Event planets whose places are compared";
    case SimilarsList::elements:
        if (second) return "Not used for this list";
        return table ? "Table planets (heliocentric)"
                     : "Event planets whose nodes and apsides are aspected";
    case SimilarsList::angles:
        if (table) return second ? "Second table planets" : "First table planets";
        return second ? "Second event planets" : "First event planets";
    }
    return {};
}

std::string SimilarsScreen::frame_title(std::string_view panel) const {
    const SimilarsViews views = similars_views(params_);
    std::string view = panel.starts_with("tables") ? views.table : views.event;
    if (similars_list(params_) == SimilarsList::elements) view = "Heliocentric";
    return to_upper(view) + " PLANETS";
}

bool SimilarsScreen::start(Session& s, MessageSink& sink) {
    SimilarsFault fault;
    if (check_similars(params_, s.stars, fault)) {
        const SimilarsMessage m = similars_message(fault);
        sink.message(m.title, m.text, MessageIcon::exclamation);
        return false;
    }
    std::vector<SimilarsTable> tables = similars_option_tables(s);
    if (tables.empty()) {
        sink.message("NO TABLES SELECTED",
                     "You must choose one or more tables to compare with on the listing tables "
                     "window",
                     MessageIcon::exclamation);
        return false;
    }
    return run_.start(s, params_, event_row_, std::move(tables), sink);
}

} // namespace celestark
