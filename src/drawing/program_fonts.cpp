#include "drawing/program_fonts.h"

#include <QFile>
#include <QFont>
#include <QFontDatabase>
#include <QGlyphRun>
#include <QPainter>
#include <QPainterPathStroker>

#include <cmath>
#include <stdexcept>

namespace celestark::drawing {

const char* font_name(ProgramFont font) {
    switch (font) {
    case ProgramFont::arial:
        return "ARIAL";
    case ProgramFont::planet_symbols:
        return "PLANETSYMBOLS";
    case ProgramFont::greek:
        return "GreekMathSymbols";
    }
    return "ARIAL";
}

namespace {

constexpr double units_per_em = 1000.0;
// The symbol font's line: a tall box, as the program's layout expects (callers measure symbols
// with a height factor of 0.8 to get one em).
constexpr float symbol_ascent = 0.85f, symbol_descent = 0.4f;
// Symbols of the Noto fonts are drawn a little larger than their letters, so that a planet glyph
// reads at the size of a capital.
constexpr float symbol_scale = 1.12f;
// The advance of a shape of our own, and the pen of its strokes, ems.
constexpr float shape_advance = 0.86f, shape_pen = 0.075f;
// The height a symbol of the Noto fonts is brought to, and the room beside it, ems.
constexpr float symbol_height = 0.8f, symbol_side = 0.06f;
// The centre of a shape of our own, ems from its left end and its baseline.
constexpr float shape_centre_x = 0.43f, shape_centre_y = -0.4f;

const char* const font_resources[font_file_count] = {
    ":/fonts/LiberationSans-Regular.ttf",
    ":/fonts/NotoSansSymbols-Regular.ttf",
    ":/fonts/NotoSansSymbols2-Regular.ttf",
};

GlyphEntry sym(FontFile file, char32_t c, float scale = symbol_scale) {
    GlyphEntry g;
    g.file = file;
    g.chars = std::u32string(1, c);
    g.scale = scale;
    return g;
}
GlyphEntry letters(std::u32string text, float scale = 0.9f, float scale_x = 1.0f) {
    GlyphEntry g;
    g.file = FontFile::sans;
    g.chars = std::move(text);
    g.scale = scale;
    g.scale_x = scale_x;
    return g;
}
GlyphEntry shape(Shape s) {
    GlyphEntry g;
    g.shape = s;
    return g;
}
GlyphEntry marked(GlyphEntry g, Shape mark) {
    g.mark = mark;
    return g;
}
GlyphEntry ringed(GlyphEntry g) {
    g.ring_around = true;
    return g;
}

std::array<GlyphEntry, 256> make_symbol_glyphs() {
    std::array<GlyphEntry, 256> t{};
    // Plain characters: digits, capitals, the blank and punctuation of position texts.
    for (int c = 32; c < 127; ++c) t[c] = letters(std::u32string(1, static_cast<char32_t>(c)), 1);
    const FontFile S = FontFile::symbols, S2 = FontFile::symbols2;
    // 117 to 124: markers of the star classes and the three chart signs.
    t[117] = shape(Shape::disc);
    t[118] = shape(Shape::triangle_up);
    t[119] = shape(Shape::square);
    t[120] = shape(Shape::diamond);
    t[121] = shape(Shape::six_point_star); // Spirit Chart
    t[122] = shape(Shape::ring);
    t[123] = shape(Shape::circle_bar); // Identity Chart
    t[124] = shape(Shape::circle_dot); // Event Chart
    // The bodies.
    t[161] = sym(S2, U'\u2609');               // Sun
    t[162] = sym(S, U'\u263D');                // Moon
    t[163] = sym(S, U'\u263F');                // Mercury
    t[164] = sym(S, U'\u2640');                // Venus
    t[165] = sym(S, U'\u2642');                // Mars
    t[166] = sym(S, U'\u2643');                // Jupiter
    t[167] = sym(S, U'\u2644');                // Saturn
    t[168] = sym(S, U'\u2645');                // Uranus
    t[169] = sym(S, U'\u2646');                // Neptune
    t[170] = sym(S2, U'\u2BD3');               // Pluto, the astrologers' form
    t[171] = sym(S, U'\u2641');                // Earth
    t[172] = sym(S, U'\u26B7');                // Chiron
    t[173] = ringed(sym(S, U'\u26B7', 0.62f)); // part of Chiron
    t[174] = sym(S2, U'\u25C6');               // fixed point sigils
    t[175] = sym(S2, U'\u25C7');
    t[176] = sym(S, U'\u260A'); // north node
    t[177] = sym(S, U'\u260B'); // south node
    t[178] = sym(S2, U'\u25B2');
    t[179] = sym(S2, U'\u25BC');
    t[180] = shape(Shape::perigee); // perigee
    t[181] = sym(S, U'\u26B8');     // apogee
    // 182 to 189: the stars in charts, a star with the letter of the star.
    for (int c = 182; c <= 189; ++c) {
        static constexpr char32_t star_letters[] = U"ARNFSPLD";
        t[c] = marked(letters(std::u32string(1, star_letters[c - 182]), 0.85f), Shape::star_cross);
    }
    t[190] = shape(Shape::ring);
    t[191] = sym(S, U'\u263E'); // the Moon's variant
    // The aspects.
    t[192] = sym(S, U'\u260C');          // conjunction
    t[193] = sym(S, U'\u26BA');          // semisextile
    t[194] = shape(Shape::semisquare);   // semisquare
    t[195] = sym(S, U'\u26B9');          // sextile
    t[196] = letters(U"Q");              // quintile
    t[197] = sym(S2, U'\u25A1');         // square
    t[198] = sym(S2, U'\u25B3');         // trine
    t[199] = sym(S, U'\u26BC');          // sesquiquadrate
    t[200] = letters(U"bQ", 0.9f, 0.8f); // biquintile
    t[201] = sym(S, U'\u26BB');          // quincunx
    t[202] = sym(S, U'\u260D');          // opposition
    t[203] = letters(U"S");              // septile family
    t[204] = letters(U"bS", 0.9f, 0.8f);
    t[205] = letters(U"tS", 0.9f, 0.8f);
    t[206] = letters(U"N"); // nonile family
    t[207] = letters(U"bN", 0.9f, 0.8f);
    t[208] = letters(U"qN", 0.9f, 0.8f);
    // The signs, Aries to Pisces.
    for (int i = 0; i < 12; ++i) t[209 + i] = sym(S, static_cast<char32_t>(0x2648 + i));
    t[221] = shape(Shape::open_diamond);
    t[222] = shape(Shape::diamond);
    t[223] = shape(Shape::quaoar);                   // Quaoar
    t[224] = sym(S2, U'\u2BF2');                     // Sedna
    t[225] = shape(Shape::part_of_fortune);          // part of Fortune
    t[226] = sym(S, U'\u26B3');                      // Ceres
    t[227] = sym(S, U'\u26B4');                      // Pallas
    t[228] = sym(S, U'\u26B6');                      // Vesta
    t[229] = sym(S, U'\u26B5');                      // Juno
    t[230] = marked(sym(S, U'\u260C'), Shape::disc); // conjunction family
    t[231] = marked(sym(S, U'\u260C'), Shape::ring);
    t[232] = marked(sym(S2, U'\u25A1'), Shape::disc); // square family
    t[233] = marked(sym(S2, U'\u25A1'), Shape::ring);
    t[234] = shape(Shape::solar_eclipse); // eclipse markers
    t[235] = shape(Shape::lunar_eclipse);
    t[236] = marked(shape(Shape::solar_eclipse), Shape::disc);
    t[237] = marked(shape(Shape::lunar_eclipse), Shape::disc);
    t[238] = letters(U"AC", 0.8f, 0.78f); // Ascendant
    t[239] = letters(U"DC", 0.8f, 0.78f); // Descendant
    t[240] = letters(U"MC", 0.8f, 0.72f); // Midheaven
    t[241] = letters(U"IC", 0.8f, 0.78f); // Imum Coeli
    t[242] = shape(Shape::triangle_up);
    t[243] = shape(Shape::triangle_down);
    t[244] = marked(sym(S, U'\u260A'), Shape::disc); // node family
    t[245] = marked(sym(S, U'\u260B'), Shape::disc);
    t[246] = marked(shape(Shape::perigee), Shape::disc); // perigee family
    t[247] = marked(sym(S, U'\u26B8'), Shape::disc);
    t[248] = letters(U"\u00B0", 1); // degree mark
    t[249] = letters(U"\u2032", 1); // minute mark
    t[250] = letters(U"\u2033", 1); // second mark
    t[251] = shape(Shape::circle_dot);
    t[252] = shape(Shape::star_cross);
    t[253] = shape(Shape::six_point_star);
    t[254] = shape(Shape::square);
    t[255] = shape(Shape::disc);
    return t;
}

// A shape in ems, baseline at y = 0, upward negative, about a capital's height; built in
// thousandths of an em so that the outlining of strokes keeps its curves round.
QPainterPath shape_path(Shape s) {
    QPainterPath p;
    QPainterPath strokes; // lines and circles, outlined at the end
    const double top = -0.8, mid = -0.4, left = 0.08, right = 0.78, cx = 0.43;
    switch (s) {
    case Shape::none:
        break;
    case Shape::quaoar: {
        // A ring on a stem with a cross bar, the mark of the Quaoar glyph's form.
        strokes.addEllipse(QPointF(cx, -0.52), 0.2, 0.2);
        strokes.moveTo(cx, -0.32);
        strokes.lineTo(cx, 0.0);
        strokes.moveTo(cx - 0.18, -0.14);
        strokes.lineTo(cx + 0.18, -0.14);
        strokes.moveTo(cx - 0.14, -0.66);
        strokes.lineTo(cx + 0.14, -0.38);
        break;
    }
    case Shape::perigee: {
        // A cross above a crescent: the apogee's mark turned over.
        strokes.moveTo(cx, -0.74);
        strokes.lineTo(cx, -0.44);
        strokes.moveTo(cx - 0.13, -0.6);
        strokes.lineTo(cx + 0.13, -0.6);
        QPainterPath crescent;
        crescent.arcMoveTo(QRectF(cx - 0.25, -0.44, 0.5, 0.44), 180);
        crescent.arcTo(QRectF(cx - 0.25, -0.44, 0.5, 0.44), 180, 180);
        strokes.addPath(crescent);
        break;
    }
    case Shape::part_of_fortune: {
        strokes.addEllipse(QPointF(cx, mid), 0.33, 0.33);
        const double d = 0.33 * std::sqrt(0.5);
        strokes.moveTo(cx - d, mid - d);
        strokes.lineTo(cx + d, mid + d);
        strokes.moveTo(cx - d, mid + d);
        strokes.lineTo(cx + d, mid - d);
        break;
    }
    case Shape::semisquare:
        strokes.moveTo(right, 0.0);
        strokes.lineTo(left, 0.0);
        strokes.lineTo(right - 0.05, top + 0.05);
        break;
    case Shape::ring:
        strokes.addEllipse(QPointF(cx, mid), 0.3, 0.3);
        break;
    case Shape::disc:
        p.addEllipse(QPointF(cx, mid), 0.3, 0.3);
        break;
    case Shape::triangle_up:
        p.moveTo(cx, top);
        p.lineTo(right, 0.0);
        p.lineTo(left, 0.0);
        p.closeSubpath();
        break;
    case Shape::triangle_down:
        p.moveTo(left, top);
        p.lineTo(right, top);
        p.lineTo(cx, 0.0);
        p.closeSubpath();
        break;
    case Shape::square:
        p.addRect(QRectF(left + 0.06, top + 0.06, 0.58, 0.58));
        break;
    case Shape::diamond:
    case Shape::open_diamond: {
        QPainterPath d;
        d.moveTo(cx, top - 0.02);
        d.lineTo(right, mid);
        d.lineTo(cx, 0.02);
        d.lineTo(left, mid);
        d.closeSubpath();
        if (s == Shape::diamond)
            p.addPath(d);
        else
            strokes.addPath(d);
        break;
    }
    case Shape::six_point_star:
    case Shape::star_cross: {
        const int points = s == Shape::six_point_star ? 6 : 4;
        const double outer = 0.38, inner = s == Shape::six_point_star ? 0.17 : 0.1;
        for (int k = 0; k < 2 * points; ++k) {
            const double a = M_PI / 2 + k * M_PI / points;
            const double r = k % 2 == 0 ? outer : inner;
            const QPointF q(cx + r * std::cos(a), mid - r * std::sin(a));
            if (k == 0)
                p.moveTo(q);
            else
                p.lineTo(q);
        }
        p.closeSubpath();
        break;
    }
    case Shape::circle_bar:
        strokes.addEllipse(QPointF(cx, mid), 0.33, 0.33);
        strokes.moveTo(cx, mid - 0.33);
        strokes.lineTo(cx, mid + 0.33);
        break;
    case Shape::circle_dot:
        strokes.addEllipse(QPointF(cx, mid), 0.33, 0.33);
        p.addEllipse(QPointF(cx, mid), 0.08, 0.08);
        break;
    case Shape::solar_eclipse:
        strokes.addEllipse(QPointF(cx, mid), 0.34, 0.34);
        p.addEllipse(QPointF(cx, mid), 0.22, 0.22);
        break;
    case Shape::lunar_eclipse: {
        strokes.addEllipse(QPointF(cx, mid), 0.33, 0.33);
        QPainterPath half;
        half.moveTo(cx, mid - 0.33);
        half.arcTo(QRectF(cx - 0.33, mid - 0.33, 0.66, 0.66), 90, 180);
        half.closeSubpath();
        p.addPath(half);
        break;
    }
    }
    QTransform thousandths;
    thousandths.scale(1000, 1000);
    QPainterPath out = thousandths.map(p);
    if (!strokes.isEmpty()) {
        QPainterPathStroker stroker;
        stroker.setWidth(shape_pen * 1000);
        stroker.setCapStyle(Qt::RoundCap);
        stroker.setJoinStyle(Qt::RoundJoin);
        out.addPath(stroker.createStroke(thousandths.map(strokes)));
    }
    out.setFillRule(Qt::WindingFill);
    return out;
}

const std::array<QPainterPath, 18>& shape_paths() {
    static const std::array<QPainterPath, 18> paths = [] {
        std::array<QPainterPath, 18> a;
        for (int i = 0; i < 18; ++i) a[static_cast<std::size_t>(i)] = shape_path(Shape(i));
        return a;
    }();
    return paths;
}

// The Windows code page of the old files: 0x80 to 0x9F, the rest is Latin-1.
constexpr char32_t cp1252_high[32] = {
    0x20AC, 0xFFFD, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0xFFFD, 0x017D, 0xFFFD, 0xFFFD, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0xFFFD, 0x017E, 0x0178};

char32_t cp1252(unsigned char b) {
    return b >= 0x80 && b < 0xA0 ? cp1252_high[b - 0x80] : static_cast<char32_t>(b);
}

bool decode_utf8(std::string_view s, std::u32string& out) {
    out.clear();
    for (std::size_t i = 0; i < s.size();) {
        const auto b = static_cast<unsigned char>(s[i]);
        int extra = 0;
        char32_t c = 0;
        if (b < 0x80) {
            c = b;
        } else if ((b & 0xE0) == 0xC0 && b >= 0xC2) {
            extra = 1;
            c = b & 0x1F;
        } else if ((b & 0xF0) == 0xE0) {
            extra = 2;
            c = b & 0x0F;
        } else if ((b & 0xF8) == 0xF0 && b <= 0xF4) {
            extra = 3;
            c = b & 0x07;
        } else {
            return false;
        }
        if (i + static_cast<std::size_t>(extra) >= s.size() && extra > 0) return false;
        for (int k = 1; k <= extra; ++k) {
            const auto n = static_cast<unsigned char>(s[i + static_cast<std::size_t>(k)]);
            if ((n & 0xC0) != 0x80) return false;
            c = (c << 6) | (n & 0x3F);
        }
        if ((extra == 2 && c < 0x800) || (extra == 3 && (c < 0x10000 || c > 0x10FFFF)) ||
            (c >= 0xD800 && c <= 0xDFFF))
            return false;
        out.push_back(c);
        i += static_cast<std::size_t>(extra) + 1;
    }
    return true;
}

quint32 glyph_index(const QRawFont& font, char32_t c) {
    QChar chars[2];
    int n = 1;
    if (c >= 0x10000) {
        chars[0] = QChar::highSurrogate(c);
        chars[1] = QChar::lowSurrogate(c);
        n = 2;
    } else {
        chars[0] = QChar(static_cast<char16_t>(c));
    }
    quint32 glyphs[2] = {0, 0};
    int count = 2;
    font.glyphIndexesForChars(chars, n, glyphs, &count);
    return count > 0 ? glyphs[0] : 0;
}

float advance_em(const QRawFont& font, quint32 glyph) {
    QPointF advance;
    font.advancesForGlyphIndexes(&glyph, &advance, 1, QRawFont::UseDesignMetrics);
    return static_cast<float>(advance.x() / units_per_em);
}

} // namespace

const std::array<GlyphEntry, 256>& symbol_glyphs() {
    static const std::array<GlyphEntry, 256> table = make_symbol_glyphs();
    return table;
}

char32_t greek_letter_for(unsigned char code) {
    // The classic symbol-font order: a alpha, b beta, c chi, d delta, e epsilon, f phi, g gamma,
    // h eta, i iota, j phi's variant, k kappa, l lambda, m mu, n nu, o omicron, p pi, q theta,
    // r rho, s sigma, t tau, u upsilon, v pi's variant, w omega, x xi, y psi, z zeta.
    static constexpr char32_t lower[26] = {0x03B1, 0x03B2, 0x03C7, 0x03B4, 0x03B5, 0x03C6, 0x03B3,
                                           0x03B7, 0x03B9, 0x03D5, 0x03BA, 0x03BB, 0x03BC, 0x03BD,
                                           0x03BF, 0x03C0, 0x03B8, 0x03C1, 0x03C3, 0x03C4, 0x03C5,
                                           0x03D6, 0x03C9, 0x03BE, 0x03C8, 0x03B6};
    if (code >= 'a' && code <= 'z') return lower[code - 'a'];
    if (code >= 'A' && code <= 'Z') {
        const char32_t l = lower[code - 'A'];
        return l == 0x03D5 || l == 0x03D6 ? l : l - 0x20; // the capitals lie 0x20 below
    }
    return 0;
}

std::u32string decode_text(std::string_view bytes) {
    std::u32string out;
    if (decode_utf8(bytes, out)) return out;
    out.clear();
    for (char b : bytes) out.push_back(cp1252(static_cast<unsigned char>(b)));
    return out;
}

struct ProgramFonts::Piece {
    bool is_shape = false;
    FontFile file = FontFile::sans;
    quint32 glyph = 0;
    Shape shape = Shape::none;
    float x = 0;       // ems from the start of the text
    float dy = 0;      // ems below the baseline
    float scale = 1;   // of the em
    float scale_x = 1; // across
    char32_t unicode = 0;
};

const ProgramFonts& ProgramFonts::instance() {
    static const ProgramFonts fonts;
    return fonts;
}

ProgramFonts::ProgramFonts() {
    for (int i = 0; i < font_file_count; ++i) {
        QFile file(QString::fromLatin1(font_resources[i]));
        if (!file.open(QIODevice::ReadOnly))
            throw std::runtime_error(std::string("the font ") + font_resources[i] +
                                     " is not built into the program");
        const QByteArray data = file.readAll();
        QRawFont& f = files_[static_cast<std::size_t>(i)];
        // Registered with the application, so that a PDF knows the font by name and embeds it as
        // a font with its Unicode map (a raw font of bare bytes would be drawn as outlines); the
        // registered font is taken only when it is this very file, never a font of the system
        // with the same name.
        const int id = QFontDatabase::addApplicationFontFromData(data);
        const QStringList families = QFontDatabase::applicationFontFamilies(id);
        if (!families.isEmpty()) {
            QFont font(families.front());
            font.setPixelSize(static_cast<int>(units_per_em));
            font.setHintingPreference(QFont::PreferNoHinting);
            font.setStyleStrategy(QFont::NoFontMerging);
            f = QRawFont::fromFont(font);
            if (f.fontTable("head") != QRawFont(data, units_per_em).fontTable("head") ||
                f.fontTable("cmap") != QRawFont(data, units_per_em).fontTable("cmap"))
                f = QRawFont();
        }
        if (!f.isValid()) f = QRawFont(data, units_per_em, QFont::PreferNoHinting);
    }
    const QRawFont& sans = files_[0];
    for (int c = 0; c < 256; ++c) {
        latin_advance_[static_cast<std::size_t>(c)] =
            advance_em(sans, glyph_index(sans, cp1252(static_cast<unsigned char>(c))));
        const char32_t g = greek_letter_for(static_cast<unsigned char>(c));
        greek_advance_[static_cast<std::size_t>(c)] =
            g ? advance_em(sans, glyph_index(sans, g))
              : latin_advance_[static_cast<std::size_t>(c)];
    }
    const auto& table = symbol_glyphs();
    for (int c = 0; c < 256; ++c) {
        const GlyphEntry& entry = table[static_cast<std::size_t>(c)];
        float w = 0;
        if (entry.shape != Shape::none) {
            w = shape_advance;
        } else if (entry.file != FontFile::sans && entry.chars.size() == 1) {
            // A symbol of the Noto fonts: brought to one size and centred in the symbol box,
            // as the fonts draw their symbols at sizes of their own.
            const QRawFont& f = files_[static_cast<std::size_t>(entry.file)];
            const QRectF box = f.boundingRect(glyph_index(f, entry.chars[0]));
            const double size = std::max({box.height(), 0.85 * box.width(), 1.0}) / units_per_em;
            const double k = symbol_height * entry.scale / symbol_scale / size;
            Fit& fit = symbol_fit_[static_cast<std::size_t>(c)];
            fit.scale = static_cast<float>(k);
            w = static_cast<float>(box.width() / units_per_em * k + 2 * symbol_side);
            if (entry.ring_around) w = std::max(w, shape_advance) + 2 * symbol_side;
            fit.dx = static_cast<float>((w - box.width() / units_per_em * k) / 2 -
                                        box.left() / units_per_em * k);
            fit.dy = static_cast<float>(shape_centre_y - box.center().y() / units_per_em * k);
            fit.fitted = true;
        } else {
            const QRawFont& f = files_[static_cast<std::size_t>(entry.file)];
            for (char32_t ch : entry.chars)
                w += advance_em(f, glyph_index(f, ch)) * entry.scale * entry.scale_x;
        }
        if (entry.mark != Shape::none) w += 0.1f;
        symbol_advance_[static_cast<std::size_t>(c)] = w;
    }
}

float ProgramFonts::ascent_em(ProgramFont font) const {
    if (font == ProgramFont::planet_symbols) return symbol_ascent;
    return static_cast<float>(files_[0].ascent() / units_per_em);
}

float ProgramFonts::descent_em(ProgramFont font) const {
    if (font == ProgramFont::planet_symbols) return symbol_descent;
    return static_cast<float>(files_[0].descent() / units_per_em);
}

float ProgramFonts::width_em(ProgramFont font, std::string_view codes) const {
    float w = 0;
    switch (font) {
    case ProgramFont::planet_symbols:
        for (char c : codes) w += symbol_advance_[static_cast<unsigned char>(c)];
        break;
    case ProgramFont::greek:
        for (char c : codes) w += greek_advance_[static_cast<unsigned char>(c)];
        break;
    case ProgramFont::arial:
        for (char32_t c : decode_text(codes))
            w += c < 256 && c >= 0xA0 ? latin_advance_[c]
                 : c < 0x80           ? latin_advance_[c]
                                      : advance_em(files_[0], glyph_index(files_[0], c));
        break;
    }
    return w;
}

TextSize ProgramFonts::measure(ProgramFont font, float points, std::string_view codes) const {
    const float em = points * 20.0f;
    return {width_em(font, codes) * em, (ascent_em(font) + descent_em(font)) * em};
}

void ProgramFonts::pieces(ProgramFont font, std::string_view codes, std::vector<Piece>& out) const {
    out.clear();
    float x = 0;
    auto add_char = [&](FontFile file, char32_t c, float scale, float scale_x) {
        const QRawFont& f = files_[static_cast<std::size_t>(file)];
        Piece p;
        p.file = file;
        p.glyph = glyph_index(f, c);
        p.x = x;
        p.scale = scale;
        p.scale_x = scale_x;
        p.unicode = c;
        out.push_back(p);
        x += advance_em(f, p.glyph) * scale * scale_x;
    };
    if (font == ProgramFont::arial) {
        for (char32_t c : decode_text(codes)) add_char(FontFile::sans, c, 1, 1);
        return;
    }
    if (font == ProgramFont::greek) {
        for (char b : codes) {
            const auto u = static_cast<unsigned char>(b);
            const char32_t g = greek_letter_for(u);
            add_char(FontFile::sans, g ? g : cp1252(u), 1, 1);
        }
        return;
    }
    const auto& table = symbol_glyphs();
    // A shape of the table centred at (cx, cy), `k` times its size.
    auto add_shape = [&](Shape shape, float cx, float cy, float k) {
        Piece p;
        p.is_shape = true;
        p.shape = shape;
        p.x = cx - shape_centre_x * k;
        p.dy = cy - shape_centre_y * k;
        p.scale = k;
        out.push_back(p);
    };
    for (char b : codes) {
        const auto code = static_cast<unsigned char>(b);
        const GlyphEntry& entry = table[code];
        const float start = x, advance = symbol_advance_[code];
        const Fit& fit = symbol_fit_[code];
        if (fit.fitted) {
            const QRawFont& f = files_[static_cast<std::size_t>(entry.file)];
            Piece p;
            p.file = entry.file;
            p.glyph = glyph_index(f, entry.chars[0]);
            p.x = x + fit.dx;
            p.dy = fit.dy;
            p.scale = fit.scale;
            p.unicode = entry.chars[0];
            out.push_back(p);
        } else if (entry.shape != Shape::none) {
            add_shape(entry.shape, start + shape_advance / 2, shape_centre_y, 1);
        } else {
            for (char32_t c : entry.chars) add_char(entry.file, c, entry.scale, entry.scale_x);
        }
        // A ring about the glyph, or a small mark at its top right (the variants).
        if (entry.ring_around) add_shape(Shape::ring, start + advance / 2, shape_centre_y, 1.4f);
        if (entry.mark != Shape::none)
            add_shape(entry.mark, start + advance - 0.1f, -symbol_ascent * 0.8f, 0.36f);
        x = start + advance;
    }
}

void ProgramFonts::draw(QPainter& painter, ProgramFont font, QPointF top_left, double em,
                        std::string_view codes, const QColor& colour, double angle_degrees,
                        bool outlines) const {
    static thread_local std::vector<Piece> parts;
    pieces(font, codes, parts);
    if (parts.empty()) return;
    painter.save();
    painter.translate(top_left);
    if (angle_degrees != 0) painter.rotate(-angle_degrees);
    painter.scale(em, em);
    painter.translate(0, ascent_em(font)); // to the baseline
    painter.setPen(Qt::NoPen);
    painter.setBrush(colour);
    const auto& shapes = shape_paths();
    for (const Piece& p : parts) {
        if (p.is_shape) {
            const QPainterPath& path = shapes[static_cast<std::size_t>(p.shape)];
            painter.save();
            painter.translate(p.x, p.dy);
            painter.scale(p.scale / units_per_em, p.scale / units_per_em);
            painter.drawPath(path);
            painter.restore();
            continue;
        }
        const QRawFont& f = files_[static_cast<std::size_t>(p.file)];
        painter.save();
        painter.translate(p.x, p.dy);
        painter.scale(p.scale * p.scale_x / units_per_em, p.scale / units_per_em);
        if (outlines) {
            painter.drawPath(f.pathForGlyph(p.glyph));
        } else {
            QGlyphRun run;
            run.setRawFont(f);
            run.setGlyphIndexes({p.glyph});
            run.setPositions({QPointF(0, 0)});
            painter.setPen(colour);
            painter.drawGlyphRun(QPointF(0, 0), run);
            painter.setPen(Qt::NoPen);
        }
        painter.restore();
    }
    painter.restore();
}

bool ProgramFonts::file_has(FontFile file, char32_t c) const {
    return files_[static_cast<std::size_t>(file)].supportsCharacter(static_cast<uint>(c));
}

bool ProgramFonts::symbol_table_complete(std::vector<int>& missing) const {
    missing.clear();
    const auto& table = symbol_glyphs();
    for (int code = 32; code < 256; ++code) {
        if (code >= 127 && code < 161) continue; // codes that carry no symbol
        const GlyphEntry& entry = table[static_cast<std::size_t>(code)];
        bool ok = entry.shape != Shape::none || !entry.chars.empty();
        for (char32_t c : entry.chars) ok = ok && file_has(entry.file, c);
        if (!ok) missing.push_back(code);
    }
    return missing.empty();
}

std::u32string ProgramFonts::unicode_of(ProgramFont font, std::string_view codes) const {
    std::vector<Piece> parts;
    pieces(font, codes, parts);
    std::u32string out;
    for (const Piece& p : parts)
        if (!p.is_shape) out.push_back(p.unicode);
    return out;
}

} // namespace celestark::drawing
