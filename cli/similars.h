#pragma once
// The similars command of celestark-cli: a stored or inline event held against up to five tables
// of an event database, with the controls of the similars screen by name, one CSV row a line of
// the report.
#include <map>
#include <string>

namespace celestark::cli {

// similars (--db FILE --table NAME --row N | EVENT) --against-db FILE --tables A,B,...
// [--set NAME=VALUE,...]: the header line, then a row a similar: "table,row,name,date" and the
// columns of the list chosen (orbs and angles in degrees). Rows that cannot be charted are told
// on standard error by their table and row, and the run goes on.
int command_similars(const std::map<std::string, std::string>& options);

} // namespace celestark::cli
