// Pictures in SVG: what they become, and what is said of what is left out.
#include <gtest/gtest.h>

#include <cmath>

#include "author/source_movie.h"
#include "author/svg_document.h"
#include "author/svg_paint.h"

namespace qel::author {
namespace {

std::string svg(std::string_view inside, std::string_view attributes = R"(width="100" height="80")") {
    return "<svg xmlns=\"http://www.w3.org/2000/svg\" xmlns:xlink=\"x\" " + std::string(attributes) + ">" +
           std::string(inside) + "</svg>";
}

SvgPicture picture(std::string_view inside, const SvgSize& size = {}) { return readSvg(svg(inside), size); }

// The points of an element in whole pixels: "M0,0 L4,0 Q4,4 0,4 Z".
std::string outline(const SvgElement& element) {
    const auto point = [](SvgPoint p) {
        return std::to_string(std::lround(p.x)) + "," + std::to_string(std::lround(p.y));
    };
    std::string text;
    for (const SvgSubPath& path : element.paths) {
        text += (text.empty() ? "M" : " M") + point(path.start);
        for (const SvgStep& step : path.steps)
            text += step.curve ? " Q" + point(step.control) + " " + point(step.to) : " L" + point(step.to);
        if (path.closed) text += " Z";
    }
    return text;
}

TEST(SvgOutlines, ComeFromPathsAndBasicShapes) {
    struct Row {
        const char *element, *expected;
    };
    for (const Row& row : {
             Row{R"(<path d="M1 2L3,4h5v-6zm1 1l2-2"/>)", "M1,2 L3,4 L8,4 L8,-2 Z M2,3 L4,1"},
             Row{R"(<path d="m1 2 3 4 5 6"/>)", "M1,2 L4,6 L9,12"},
             Row{R"(<path d="M0 0Q5 0 5 5t10,10T10 20"/>)", "M0,0 Q5,0 5,5 Q5,10 15,15 Q25,20 10,20"},
             Row{R"(<path d="M.5.5-1.5e1 3"/>)", "M1,1 L-15,3"},
             Row{R"(<path d="M0 0 L4 4 X 5 L9 9"/>)", "M0,0 L4,4"},
             Row{R"(<path d="M0 0 L4 4 Z L1 1"/>)", "M0,0 L4,4 Z M0,0 L1,1"},
             Row{R"(<rect x="1" y="2" width="3" height="4"/>)", "M1,2 L4,2 L4,6 L1,6 L1,2 Z"},
             Row{R"(<polygon points="0,0 4 0 4,4"/>)", "M0,0 L4,0 L4,4 Z"},
             Row{R"(<polyline points="0,0 4 0 4,4 9"/>)", "M0,0 L4,0 L4,4"},
             Row{R"(<line x1="1" y1="2" x2="3" y2="4" stroke="red"/>)", "M1,2 L3,4"},
         }) {
        const SvgPicture read = picture(row.element);
        ASSERT_EQ(read.elements.size(), 1u) << row.element;
        EXPECT_EQ(outline(read.elements[0]), row.expected) << row.element;
    }
    EXPECT_TRUE(picture("<path d='L1 1'/>").elements[0].paths.empty()) << "a path begins with M";
}

// The farthest that the middle of any piece lies from a circle.
double awayFromCircle(const SvgElement& element, SvgPoint centre, double radius) {
    double worst = 0;
    for (const SvgSubPath& path : element.paths) {
        SvgPoint pen = path.start;
        for (const SvgStep& step : path.steps) {
            for (const double t : {0.25, 0.5, 0.75, 1.0}) {
                const double a = (1 - t) * (1 - t), b = 2 * t * (1 - t), c = t * t;
                const double x = a * pen.x + b * step.control.x + c * step.to.x,
                             y = a * pen.y + b * step.control.y + c * step.to.y;
                worst = std::max(worst, std::abs(std::hypot(x - centre.x, y - centre.y) - radius));
            }
            pen = step.to;
        }
    }
    return worst;
}

TEST(SvgOutlines, KeepArcsAndCubicsWithinHalfAPixel) {
    for (const double radius : {3.0, 20.0, 150.0}) {
        const std::string r = std::to_string(radius), twice = std::to_string(2 * radius);
        EXPECT_LT(awayFromCircle(picture("<circle cx='7' cy='9' r='" + r + "'/>").elements[0], {7, 9}, radius), 0.5);
        const std::string k = std::to_string(radius * 0.5522847498);
        const std::string quarter = "<path d='M" + r + " 0C" + r + " " + k + " " + k + " " + r + " 0 " + r + "'/>";
        EXPECT_LT(awayFromCircle(picture(quarter).elements[0], {0, 0}, radius), 0.5);
        const std::string arcs =
            "<path d='M-" + r + " 0a" + r + " " + r + " 0 01" + twice + " 0A" + r + " " + r + " 30 1 1-" + r + " 0'/>";
        EXPECT_LT(awayFromCircle(picture(arcs).elements[0], {0, 0}, radius), 0.5) << arcs;
    }
    EXPECT_EQ(picture("<circle r='200'/>", {.scale = 0.01, .fit = {}}).elements[0].paths[0].steps.size(), 4u)
        << "as many pieces as the size on the screen wants";
}

TEST(SvgTransforms, NestAndFitTheViewBox) {
    const SvgPicture nested = picture(R"x(<g transform="translate(10,20) scale(2)"><path transform="rotate(90 1 1)"
        d="M1 0L2 1"/></g>)x");
    EXPECT_EQ(outline(nested.elements[0]), "M14,22 L12,24");
    EXPECT_EQ(outline(picture(R"x(<path transform="matrix(0 1 -1 0 5 6) skewX(45)" d="M0 1L0 0"/>)x").elements[0]),
              "M4,7 L5,6");
    const SvgPicture box =
        readSvg(svg("<path d='M10 10L20 20'/>", R"(viewBox="10 10 10 20")"), {.scale = 1, .fit = SvgPoint{50, 60}});
    EXPECT_EQ(box.width, 30);
    EXPECT_EQ(box.height, 60);
    EXPECT_EQ(outline(box.elements[0]), "M0,0 L30,30");
    EXPECT_EQ(readSvg(svg("", R"(width="1in" height="10mm")"), {}).width, 96);
}

TEST(SvgPaints, AreInheritedAndOverridden) {
    struct Row {
        const char* inside;
        std::optional<std::uint32_t> fill;
        double alpha;
        std::optional<std::uint32_t> stroke;
        double width;
    };
    for (const Row& row : {
             Row{"<rect width='1' height='1'/>", 0x000000, 1, {}, 0},
             Row{"<g fill='#f80' stroke='navy'><rect width='1' height='1' stroke-width='3'/></g>", 0xFF8800, 1,
                 0x000080, 3},
             Row{"<g fill='red'><rect width='1' height='1' fill='blue' style='fill: rgb(1, 2,3); opacity:.5'/></g>",
                 0x010203,
                 0.5,
                 {},
                 0},
             Row{"<g opacity='.5'><rect width='1' height='1' fill-opacity='.5' fill='rgb(100%,0%,0%)'/></g>",
                 0xFF0000,
                 0.25,
                 {},
                 0},
             Row{"<g color='teal' transform='scale(2)'><rect width='1' height='1' fill='none' "
                 "stroke='currentColor'/></g>",
                 {},
                 0,
                 0x008080,
                 2},
         }) {
        const SvgPicture read = picture(row.inside);
        ASSERT_EQ(read.elements.size(), 1u) << row.inside;
        const SvgElement& element = read.elements[0];
        ASSERT_EQ(element.fill.has_value(), row.fill.has_value()) << row.inside;
        if (row.fill) {
            EXPECT_EQ(element.fill->colour, *row.fill) << row.inside;
            EXPECT_NEAR(element.fill->alpha, row.alpha, 1e-9) << row.inside;
        }
        ASSERT_EQ(element.stroke.has_value(), row.stroke.has_value()) << row.inside;
        if (row.stroke) {
            EXPECT_EQ(element.stroke->colour, *row.stroke) << row.inside;
            EXPECT_NEAR(element.stroke->width, row.width, 1e-9) << row.inside;
        }
    }
    EXPECT_EQ(svgColour("AliceBlue"), 0xF0F8FFu);
    EXPECT_EQ(svgColour("yellowgreen"), 0x9ACD32u);
    EXPECT_FALSE(svgColour("#12345"));
}

TEST(SvgGradients, TakeOverWhatTheyReferTo) {
    const SvgPicture read = picture(R"x(
        <linearGradient id="base"><stop offset="10%" stop-color="red"/>
            <stop offset=".05" style="stop-color:blue;stop-opacity:.5"/></linearGradient>
        <linearGradient id="a" xlink:href="#base" x2="0" y2="1"/>
        <radialGradient id="b" href="#base" gradientUnits="userSpaceOnUse" cx="5" cy="6" r="7"/>
        <rect x="10" y="20" width="30" height="40" fill="url(#a)"/><rect width="9" height="9" fill="url(#b)"/>)x");
    ASSERT_EQ(read.elements.size(), 2u);
    const SvgGradient &linear = *read.elements[0].fill->gradient, &radial = *read.elements[1].fill->gradient;
    ASSERT_EQ(linear.stops.size(), 2u);
    EXPECT_NEAR(linear.stops[1].offset, 0.1, 1e-9) << "offsets never go back";
    EXPECT_EQ(linear.stops[1].alpha, 0.5);
    const SvgPoint begin = linear.plane({0, 0}), end = linear.plane({1, 0});
    EXPECT_NEAR(begin.x, end.x, 1e-9);
    EXPECT_NEAR(begin.y, 20, 1e-9);
    EXPECT_NEAR(end.y, 60, 1e-9);
    EXPECT_TRUE(radial.radial);
    EXPECT_NEAR(radial.plane({1, 0}).x, 12, 1e-9);
}

TEST(SvgPictures, SayWhatTheyLeaveOut) {
    const SvgPicture read = picture(R"x(
        <text>a</text><text>b</text><image/><style>x</style><title>t</title>
        <rect width="4" height="4" clip-path="url(#c)" style="filter:url(#f)"/>
        <line x2="4" stroke="black" stroke-dasharray="1 2" stroke-linecap="round"/>
        <path d="M0 0H9V9H0Z M1 1H4V4H1Z"/><path fill-rule="evenodd" d="M0 0H9V9H0Z M1 1H4V4H1Z"/>
        <rect width="4" height="4" fill="url(#nothing)"/><use href="#nothing"/><path d="M0 0 ?"/>)x");
    const std::map<std::string, int> expected{{"<text> elements", 2},
                                              {"<image> elements", 1},
                                              {"style sheets", 1},
                                              {"clip paths", 1},
                                              {"filters", 1},
                                              {"dashed lines", 1},
                                              {"line caps", 1},
                                              {"overlaps of a path with itself (they become holes)", 1},
                                              {"paints that are not known", 1},
                                              {"<use> of elements that are not there", 1},
                                              {"broken path data", 1}};
    EXPECT_EQ(read.leftOut, expected);
}

TEST(SvgPictures, EndDefinedWhereTheyNestWithoutEnd) {
    const SvgPicture self = picture(R"(<g id="a"><use href="#a"/><rect width="1" height="1"/></g>)");
    EXPECT_TRUE(self.leftOut.contains("elements nested deeper than 64"));
    std::string deep, doubling = "<g id='g0'><rect width='1' height='1'/></g>";
    for (int i = 0; i < 2000; ++i) deep += "<g>";
    EXPECT_THROW(picture(deep), SvgError) << "not closed";
    for (int i = 1; i < 40; ++i) {
        const std::string inner = "<use href='#g" + std::to_string(i - 1) + "'/>";
        doubling += "<g id='g" + std::to_string(i) + "'>" + inner + inner + "</g>";
    }
    EXPECT_THROW(picture(doubling), SvgError) << "more elements than anybody draws";
    for (const char* text : {"", "<svg", "<html/>", "plain"}) EXPECT_THROW(readSvg(text, {}), SvgError) << text;
    EXPECT_THROW(picture("<g transform='turn(4)'/>"), SvgError);
    EXPECT_THROW(readSvg(svg("", "width='0' height='5'"), {}), SvgError);
}

// --- in sources

std::size_t countOf(const MovieFile& movie, RecordType type) {
    std::size_t count = 0;
    for (const Bytes& record : movie.records) count += record[0] == static_cast<std::uint8_t>(type);
    return count;
}

TEST(SvgSources, BecomeAsFewShapesAsTheOrderAllows) {
    struct Row {
        const char* inside;
        std::size_t shapes, sprites;
    };
    for (const Row& row : {
             Row{"<rect width='9' height='9'/><rect width='5' height='5' fill='red' stroke='blue'/>", 1, 0},
             Row{"<rect width='9' height='9' stroke='blue'/><rect width='5' height='5'/>", 2, 1},
             Row{"<rect width='9' height='9'/><rect width='5' height='5' opacity='.5'/><rect width='2' height='2'/>", 3,
                 1},
             Row{"", 1, 0},
         }) {
        std::vector<std::string> warnings;
        const MovieFile movie = buildPictureMovie(svg(row.inside), "a.svg", 1, warnings);
        EXPECT_EQ(countOf(movie, RecordType::shape), row.shapes) << row.inside;
        EXPECT_EQ(countOf(movie, RecordType::sprite), row.sprites) << row.inside;
        EXPECT_EQ(movie.width, 100);
        EXPECT_TRUE(warnings.empty());
    }
    std::vector<std::string> warnings;
    buildPictureMovie(svg("<text/><rect x='99999' width='9' height='9'/>"), "odd \"name\".svg", 1, warnings);
    EXPECT_EQ(warnings, (std::vector<std::string>{"odd \"name\".svg: left out: <text> elements",
                                                  "odd \"name\".svg: what lies beyond 16383 pixels is drawn nearer"}));
}

TEST(SvgSources, NameThePlaceOfWhatIsWrong) {
    const ReadSourceFile readFile = [](const std::string& name) -> std::optional<Bytes> {
        if (name != "a.svg") return std::nullopt;
        const std::string text =
            svg("<rect width='9' height='9' fill='url(#g)'/><linearGradient id='g'><stop/></linearGradient>");
        return Bytes(text.begin(), text.end());
    };
    const auto source = [](std::string_view fields) {
        return R"({"stage": [9, 9], "characters": {"p": {"svg": )" + std::string(fields) + R"(}}, "frames": [{}]})";
    };
    EXPECT_EQ(countOf(buildMovie(source("\"a.svg\", \"fit\": [20, 20]"), readFile), RecordType::gradientFill), 1u);
    for (const char* broken :
         {"\"b.svg\"", "\"../a.svg\"", "\"a.svg\", \"scale\": 0", "\"a.svg\", \"scale\": 1, \"fit\": [1, 1]",
          "\"a.svg\", \"fit\": [1]", "\"a.svg\", \"shape\": []", "7"})
        EXPECT_THROW(buildMovie(source(broken), readFile), SourceError) << broken;
}

TEST(SourceMorphs, PairTheStylesOfTheirPaths) {
    const auto source = [](std::string_view end) {
        return R"({"stage": [9, 9], "characters": {
            "l": {"line": "#ff0000"}, "m": {"line": "#00ff00", "width": 4},
            "a": {"shape": [{"path": "M0 0H4V4Z", "fill": "#ff0000", "line": "l"}, {"path": "M0 0Q4 4 8 0", "line": "l"}]},
            "b": {"shape": [)" +
               std::string(end) + R"(]}, "morph": {"morph": ["a", "b"]}},
            "frames": [{"place": {"x": {"character": "morph"}}}, {"ratio": {"x": 16384}}]})";
    };
    const MovieFile movie = buildMovie(
        source(R"({"path": "M0 0H8V8Z", "fill": "#0000ff", "line": "m"}, {"path": "M0 9Q4 9 8 9", "line": "l"})"));
    ASSERT_EQ(countOf(movie, RecordType::morphShape), 1u);
    for (const Bytes& record : movie.records) {
        if (record[0] != static_cast<std::uint8_t>(RecordType::morphShape)) continue;
        EXPECT_EQ(record[8], 2) << "the fills, and the lines of the first paths";
    }
    for (const char* broken :
         {R"({"path": "M0 0H8V8Z", "fill": "#0000ff", "line": "m"})",
          R"({"path": "M0 0H8V8H0Z", "fill": "#0000ff", "line": "m"}, {"path": "M0 9Q4 9 8 9", "line": "l"})",
          R"({"path": "M0 0H8V8Z", "fill": "#0000ff"}, {"path": "M0 9Q4 9 8 9", "line": "l"})"})
        EXPECT_THROW(buildMovie(source(broken)), SourceError) << broken;
    EXPECT_THROW(buildMovie(R"({"stage": [9, 9], "characters": {"m": {"morph": ["m", "m"]}}, "frames": [{}]})"),
                 SourceError);
}

}  // namespace
}  // namespace qel::author
