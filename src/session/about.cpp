#include "session/about.h"

namespace celestark {

std::vector<std::string> about_text() {
    return {
        "Celestark",
        "Version 2.007",
        "A workbench for astrology and positional astronomy.",
        "",
        "Planets: VSOP87 version D, P. Bretagnon and G. Francou, IMCCE (CDS catalogue VI/81).",
        "Moon: ELP 2000-82B, M. Chapront-Touze and J. Chapront, IMCCE (CDS catalogue VI/79).",
        "Uranus to Pluto, the asteroids and Chiron: tables built from JPL DE431 through the Swiss "
        "Ephemeris data files.",
        "",
        "Star catalogue:",
        "Hipparcos Catalogue: ESA (1997), The Hipparcos and Tycho Catalogues, ESA SP-1200; via "
        "CDS, Strasbourg (catalogue I/239).",
        "Yale Bright Star Catalogue, 5th Revised Ed.: Hoffleit, D. & Warren, W. H. Jr. (1991), "
        "Yale University Observatory / NASA ADC; via CDS, Strasbourg (catalogue V/50).",
        "Star names and their origins: IAU Working Group on Star Names (WGSN), IAU Catalog of Star "
        "Names, CC BY 4.0 (https://exopla.net/star-names/modern-iau-star-names/).",
        "The table of star names compiled by iau-star-names: MIT licence, Copyright (c) 2025 Cora "
        "Schneck.",
        "Constellation boundaries: Roman, N. G. (1987), PASP 99, 695 (CDS catalogue VI/42), "
        "through Skyfield, MIT licence, Copyright (c) 2013-2018 Brandon Rhodes.",
        "Constellation genitives: YaleBrightStarCatalog, MIT licence, Copyright (c) 2016 Bretton "
        "Wade.",
        "",
        "Fonts: Noto Sans Symbols and Noto Sans Symbols2, Copyright 2010, 2012-2020 Google Inc., "
        "2015-2020 Google LLC; Liberation Sans, Copyright (c) 2012 Red Hat, Inc., digitized data "
        "Copyright (c) 2010 Google Corporation; all under the SIL Open Font License 1.1.",
    };
}

} // namespace celestark
