#pragma once
// The predict command of celestark-cli: a transit, biography or progression run of a stored or
// inline event, its hits as CSV rows in report order, and its report pages as PDF.
#include <map>
#include <string>

namespace celestark::cli {

// predict --mode T|B|P [--from YYYY-MM-DD] [--to YYYY-MM-DD] [--aspect-set NAME] [--zone ZONE]
// [--set NAME=VALUE,...] [--report FILE.pdf] with the event options of render.
int command_predict(const std::map<std::string, std::string>& options);

// eclipses --from YYYY-MM-DD --to YYYY-MM-DD: every solar and lunar eclipse of the span, in date
// order, as CSV "kind,type,jd_ut,date,time,magnitude,sun_lon_deg,moon_lon_deg" (Universal Time).
int command_eclipses(const std::map<std::string, std::string>& options);

// phenomena --from-year Y --to-year Y [--set NAME=VALUE,...]: the phenomena of the sky in the
// span with the controls of the phenomena screen by name, as CSV "jd_ut,date,text,body1,body2".
int command_phenomena(const std::map<std::string, std::string>& options);

// ephemeris --from YYYY-MM --to YYYY-MM [--world-view VIEW]: a row a day at 0 hours Universal
// Time, as CSV "date,sidereal_time,vernal_point" and a longitude column a body (degrees).
int command_ephemeris(const std::map<std::string, std::string>& options);

// bench --what run-transits|run-biography [--direct]: seconds for a hundred years of transits
// (geocentric, with the Moon, every planet against the birth, aspects, signs and stations) or a
// lifetime biography (lemnicentric, with the Moon); --direct calculates every step.
int command_bench_run(const std::map<std::string, std::string>& options);

} // namespace celestark::cli
