#include "app/body_tables.h"

#include "store/dated_rows.h"

namespace celestark {

std::shared_ptr<const BodyTables> open_body_tables(const std::filesystem::path& directory,
                                                   std::string& problems) {
    auto tables = std::make_shared<BodyTables>();
    problems.clear();
    const auto xyz = [](std::initializer_list<const char*> bodies) {
        std::vector<std::string> columns;
        for (const char* b : bodies)
            for (const char* axis : {"_x_position", "_y_position", "_z_position"})
                columns.push_back(std::string(b) + axis);
        return columns;
    };
    const auto load = [&](const char* file, const char* table,
                          const std::vector<std::string>& columns, BodyTable& out) {
        store::Outcome o = store::Outcome::ok;
        auto rows = store::open_dated_rows(directory / file, table, columns, o);
        if (o == store::Outcome::ok &&
            !out.attach(std::move(rows), static_cast<int>(columns.size())))
            o = store::Outcome::no_current_record;
        if (o != store::Outcome::ok)
            problems +=
                std::string(file) + " (" + table + "): " + std::string(store::describe(o)) + "\n";
    };
    load("outer3.mdb", "planets", xyz({"uranus", "neptune", "pluto"}), tables->planets);
    load("asteroid.mdb", "asteroids", xyz({"juno", "vesta", "ceres", "pallas"}), tables->asteroids);
    load("asteroid.mdb", "chiron", xyz({"chiron"}), tables->chiron);
    return tables;
}

} // namespace celestark
