#include "reader/scene_parse_utils.h"

#include "reader/reader_test_helpers.h"
#include "support/string_utils.h"

#include <gtest/gtest.h>

#include <functional>

using namespace Velorn;
using namespace Velorn::SceneParseUtils;
using VelornTest::XMLText;

namespace
{

// A helper applied to the root of a document, its result as text.
typedef std::function<std::string(const TiXmlElement&)> Reader;

struct Case
{
	const char* xml;
	Reader read;
	// The result's text, or the whole failure message.
	const char* expected;
};

std::string vectorText(std::initializer_list<double> values)
{
	std::string text;
	for(double value : values)
		text += (text.empty() ? "" : " ") + sceneNumberText(value);
	return text;
}

// Each result as the cases write it: numbers in the scene's form, strings
// in brackets so that blanks show.
std::string text(double v) { return sceneNumberText(v); }
std::string text(int32_t v) { return toString(v); }
std::string text(uint32_t v) { return toString(v); }
std::string text(bool v) { return toString(v); }
std::string text(const std::string& s) { return "[" + s + "]"; }
std::string text(const Vec2d& v) { return vectorText({v.x, v.y}); }
std::string text(const Vec3d& v) { return vectorText({v.x, v.y, v.z}); }
std::string text(const Matrix2d& m) { return vectorText({m.e[0], m.e[1], m.e[2], m.e[3]}); }

// Reads the child called name with parse.
template <class T>
Reader as(T (*parse)(const TiXmlElement&, const char*), const char* name = "a")
{
	return [=](const TiXmlElement& e) { return text(parse(e, name)); };
}

std::string resultOf(const Case& c)
{
	XMLText doc(c.xml);
	std::string result;
	const std::string failure = VelornTest::failureOf<SceneParseUtilsExcep>([&] { result = c.read(doc.root()); });
	return failure == "(no failure)" ? result : failure;
}

template <size_t N>
void runCases(const Case (&cases)[N])
{
	for(const Case& c : cases)
	{
		SCOPED_TRACE(c.xml);
		EXPECT_EQ(resultOf(c), c.expected);
	}
}

} // namespace

// TinyXML counts from 1 in this build; a tab moves to the next multiple of
// four columns.
TEST(SceneParseUtils, PlaceOfAnElement)
{
	XMLText doc("<scene>\n  <a/>\t<b/>\n\t<c/></scene>");
	const TiXmlElement& root = doc.root();
	EXPECT_EQ(errorContext(root), "  (In element 'scene', around line 1, column 1)");
	EXPECT_EQ(errorContext(*root.FirstChildElement("a")), "  (In element 'a', around line 2, column 3)");
	EXPECT_EQ(errorContext(*root.FirstChildElement("b")), "  (In element 'b', around line 2, column 9)");
	EXPECT_EQ(errorContext(*root.FirstChildElement("c")), "  (In element 'c', around line 3, column 5)");
}

TEST(SceneParseUtils, Doubles)
{
	const Case cases[] = {
		{"<p><a>3.5</a></p>", as(parseDouble), "3.5"},
		{"<p><a> 3.5 </a></p>", as(parseDouble), "3.5"},
		{"<p><a>\t\r\n-1e-7\n\t</a></p>", as(parseDouble), "-1e-7"},
		{"<p><a>1<!-- between -->5</a></p>", as(parseDouble), "15"},
		{"<p><a><![CDATA[ 2.5 ]]></a></p>", as(parseDouble), "2.5"},
		{"<p>\n<a>3.5x</a>\n</p>", as(parseDouble),
			"Parse error while parsing double from '3.5x'.  (In element 'a', around line 2, column 1)"},
		{"<p><a></a></p>", as(parseDouble), "Failed to parse double from ''.  (In element 'a', around line 1, column 4)"},
		{"<p><a>NaN</a></p>", as(parseDouble), "Failed to parse double from 'NaN'.  (In element 'a', around line 1, column 4)"},
		{"<p><a>1</a><a>2</a></p>", as(parseDouble), "1"},
		{"<p/>", as(parseDouble), "could not find element 'a'.  (In element 'p', around line 1, column 1)"},
		{"<p/>", [](const TiXmlElement& e) { return sceneNumberText(parseDoubleWithDefault(e, "a", 7)); }, "7"},
		{"<p><a>0.5</a></p>", [](const TiXmlElement& e) { return sceneNumberText(parseDoubleWithDefault(e, "a", 7)); }, "0.5"},
		{"<p><a>x</a></p>", [](const TiXmlElement& e) { return sceneNumberText(parseDoubleWithDefault(e, "a", 7)); },
			"Failed to parse double from 'x'.  (In element 'a', around line 1, column 4)"},
	};
	runCases(cases);
}

TEST(SceneParseUtils, Integers)
{
	const Case cases[] = {
		{"<p><a> -42 </a></p>", as(parseInt), "-42"},
		{"<p><a>+7</a></p>", as(parseInt), "7"},
		{"<p><a>-2147483648</a></p>", as(parseInt), "-2147483648"},
		{"<p><a>2147483647</a></p>", as(parseInt), "2147483647"},
		{"<p><a>12abc</a></p>", as(parseInt),
			"Parse error while parsing integer from '12abc'.  (In element 'a', around line 1, column 4)"},
		{"<p><a>2147483648</a></p>", as(parseInt),
			"Failed to parse integer from '2147483648'.  (In element 'a', around line 1, column 4)"},
		{"<p><a>-2147483649</a></p>", as(parseInt),
			"Failed to parse integer from '-2147483649'.  (In element 'a', around line 1, column 4)"},
		{"<p><a>99999999999999999999</a></p>", as(parseInt),
			"Failed to parse integer from '99999999999999999999'.  (In element 'a', around line 1, column 4)"},
		{"<p><a></a></p>", as(parseInt), "Failed to parse integer from ''.  (In element 'a', around line 1, column 4)"},
		{"<p/>", [](const TiXmlElement& e) { return toString(parseIntWithDefault(e, "a", -3)); }, "-3"},
		{"<p><a>4294967295</a></p>", as(parseUInt), "4294967295"},
		{"<p><a>4294967296</a></p>", as(parseUInt),
			"Failed to parse unsigned integer from '4294967296'.  (In element 'a', around line 1, column 4)"},
		{"<p><a>7 x</a></p>", as(parseUInt),
			"Parse error while parsing unsigned integer from '7 x'.  (In element 'a', around line 1, column 4)"},
		{"<p/>", as(parseUInt), "could not find element 'a'.  (In element 'p', around line 1, column 1)"},
		{"<p/>", [](const TiXmlElement& e) { return toString(parseUIntWithDefault(e, "a", 9)); }, "9"},
	};
	runCases(cases);
}

TEST(SceneParseUtils, Vectors)
{
	const Case cases[] = {
		{"<p><a>0.25 -1</a></p>", as(parseVec2), "0.25 -1"},
		{"<p><a>1</a></p>", as(parseVec2), "Failed to parse Vec2 from '1'.  (In element 'a', around line 1, column 4)"},
		{"<p><a>1 2 3</a></p>", as(parseVec2),
			"Parse error while parsing Vec2 from '1 2 3'.  (In element 'a', around line 1, column 4)"},
		{"<p><a> 1\t2\n3 </a></p>", as(parseVec3), "1 2 3"},
		{"<p><a>1 2</a></p>", as(parseVec3), "Failed to parse Vec3 from '1 2'.  (In element 'a', around line 1, column 4)"},
		// The numbers must be separated by white space.
		{"<p><a>1-2 3</a></p>", as(parseVec3), "Failed to parse Vec3 from '1-2 3'.  (In element 'a', around line 1, column 4)"},
		{"<p><a>1 2 3 4</a></p>", as(parseVec3),
			"Parse error while parsing Vec3 from '1 2 3 4'.  (In element 'a', around line 1, column 4)"},
		{"<uv><matrix>2 0 0 0.5</matrix></uv>", as(parseMatrix2, "matrix"), "2 0 0 0.5"},
		{"<uv><matrix>2 0 0</matrix></uv>", as(parseMatrix2, "matrix"),
			"syntax error while parsing Matrix2.  (In element 'matrix', around line 1, column 5)"},
		{"<uv><matrix>2 0 0 1 5</matrix></uv>", as(parseMatrix2, "matrix"),
			"syntax error while parsing Matrix2.  (In element 'matrix', around line 1, column 5)"},
		{"<uv/>", as(parseMatrix2, "matrix"), "could not find element 'matrix'.  (In element 'uv', around line 1, column 1)"},
	};
	runCases(cases);
}

TEST(SceneParseUtils, BooleansAndStrings)
{
	const Case cases[] = {
		{"<p><a>true</a></p>", as(parseBool), "true"},
		{"<p><a>false</a></p>", as(parseBool), "false"},
		{"<p><a> true</a></p>", as(parseBool),
			"Invalid boolean value (Should be 'true' or 'false').  (In element 'a', around line 1, column 4)"},
		{"<p/>", [](const TiXmlElement& e) { return toString(parseBoolWithDefault(e, "a", true)); }, "true"},
		{"<p><a>false</a></p>", [](const TiXmlElement& e) { return toString(parseBoolWithDefault(e, "a", true)); }, "false"},
		{"<p><d>Hel<!--comment-->lo</d></p>", as(parseString, "d"), "[Hello]"},
		{"<p><a> keep  it </a></p>", as(parseString), "[ keep  it ]"},
		{"<p><a><![CDATA[  two  ]]></a></p>", as(parseString), "[  two  ]"},
		{"<p><a>x<![CDATA[<b>]]>y</a></p>", as(parseString), "[x<b>y]"},
		{"<p><a>Wood &amp; Oak</a></p>", as(parseString), "[Wood & Oak]"},
		// Text inside a child element is not the element's own.
		{"<p><a>x<b>inner</b>y</a></p>", as(parseString), "[xy]"},
		{"<p/>", as(parseString), "could not find element 'a'.  (In element 'p', around line 1, column 1)"},
		{"<p/>", [](const TiXmlElement& e) { return parseStringWithDefault(e, "a", "none"); }, "none"},
	};
	runCases(cases);
}

TEST(SceneParseUtils, ExpectedElements)
{
	const Case cases[] = {
		{"<p><a/></p>", [](const TiXmlElement& e) { return std::string(getFirstChildElement(e, "a")->Value()); }, "a"},
		{"<p>\n\t<b/>\n</p>", [](const TiXmlElement& e) { return std::string(getFirstChildElement(e, "a")->Value()); },
			"Failed to find expected element 'a'.  (In element 'p', around line 1, column 1)"},
		{"<p><b/></p>",
			[](const TiXmlElement& e) {
				checkElementExists(e, "b");
				checkElementExists(e, "a");
				return "";
			},
			"Failed to find expected element 'a'.  (In element 'p', around line 1, column 1)"},
	};
	runCases(cases);
}

TEST(SceneParseUtils, UnexpectedAndDuplicateElements)
{
	static const char* const ab[] = {"a", "b", nullptr};
	static const char* const a[] = {"a", nullptr};
	const Reader unexpected = [](const TiXmlElement& e) {
		checkForUnexpectedElements(e, ab);
		return "";
	};
	const Reader duplicates = [](const TiXmlElement& e) {
		checkForDuplicateElements(e, a);
		return "";
	};
	const Case cases[] = {
		{"<p><a/>text<!--c--><b/><a/></p>", unexpected, ""},
		{"<p>\n<a/><b/><c/></p>", unexpected, "Found unexpected element 'c'.  (In element 'p', around line 1, column 1)"},
		{"<p><a/><b/><b/></p>", duplicates, ""},
		{"<p>\n<a/>\n<b/>\n  <a/>\n</p>", duplicates,
			"Found unexpected element 'a' (Already parsed element called 'a') in element 'p'. (Around line 4, column 3)"},
	};
	runCases(cases);
}

TEST(SceneParseUtils, MutuallyExclusiveElements)
{
	static const char* const xyz[] = {"x", "y", "z", nullptr};
	const Reader chosen = [](const TiXmlElement& e) { return std::string(checkMutuallyExclusive(e, xyz).Value()); };
	const Case cases[] = {
		{"<p><y/></p>", chosen, "y"},
		{"<p><!-- c --> text <z/></p>", chosen, "z"},
		// Only the first child must be one of the list.
		{"<p><x/><w/></p>", chosen, "x"},
		{"<p/>", chosen,
			"Failed to find child for element 'p' - Child should be one of 'x', 'y', 'z'.  (In element 'p', around line 1, "
			"column 1)"},
		{"<p>only text</p>", chosen,
			"Failed to find child for element 'p' - Child should be one of 'x', 'y', 'z'.  (In element 'p', around line 1, "
			"column 1)"},
		{"<p><w/><x/></p>", chosen, "Found unexpected element 'w'.  (In element 'p', around line 1, column 1)"},
		{"<p><x/><w/><y/></p>", chosen,
			"Found unexpected element 'y,  already parsed mutually exclusive element 'x'.  (In element 'p', around line 1, "
			"column 1)"},
	};
	runCases(cases);
}

TEST(SceneParseUtils, Rotations)
{
	const Reader rotation = [](const TiXmlElement& e) {
		const Reference<Rotation> r = parseRotation(e, "rotation");
		if(Reference<AxisRotation> axis = r.downcast<AxisRotation>())
			return "axis " + vectorText({axis->axis.x, axis->axis.y, axis->axis.z, axis->angle});
		const Matrix3d& m = r.downcast<MatrixRotation>()->matrix;
		return "matrix " + vectorText({m.e[0], m.e[1], m.e[2], m.e[3], m.e[4], m.e[5], m.e[6], m.e[7], m.e[8]});
	};
	const Case cases[] = {
		{"<p><rotation>\n\t<matrix>\n\t\t0 1 0 -1 0 0 0 0 1 \n\t</matrix>\n</rotation></p>", rotation,
			"matrix 0 1 0 -1 0 0 0 0 1"},
		{"<p><rotation><axis_rotation><axis>0 1 0</axis><angle>1.5</angle></axis_rotation></rotation></p>", rotation,
			"axis 0 1 0 1.5"},
		{"<p><rotation><matrix>1 0 0 0 1 0 0 0</matrix></rotation></p>", rotation,
			"syntax error while parsing Matrix.  (In element 'matrix', around line 1, column 14)"},
		{"<p><rotation><matrix>1 0 0 0 1 0 0 0 1 1</matrix></rotation></p>", rotation,
			"syntax error while parsing Matrix.  (In element 'matrix', around line 1, column 14)"},
		{"<p><rotation><axis_rotation><axis>0 1 0</axis><angle>1</angle><scale/></axis_rotation></rotation></p>", rotation,
			"Found unexpected element 'scale'.  (In element 'axis_rotation', around line 1, column 14)"},
		{"<p><rotation><axis_rotation><axis>0 1 0</axis></axis_rotation></rotation></p>", rotation,
			"could not find element 'angle'.  (In element 'axis_rotation', around line 1, column 14)"},
		{"<p><rotation><matrix>1 0 0 0 1 0 0 0 1</matrix><axis_rotation/></rotation></p>", rotation,
			"Found unexpected element 'axis_rotation,  already parsed mutually exclusive element 'matrix'.  (In element "
			"'rotation', around line 1, column 4)"},
		{"<p><rotation><euler/></rotation></p>", rotation,
			"Found unexpected element 'euler'.  (In element 'rotation', around line 1, column 4)"},
		{"<p/>", rotation, "Failed to find expected element 'rotation'.  (In element 'p', around line 1, column 1)"},
	};
	runCases(cases);

	XMLText empty("<p/>");
	const Reference<Rotation> identity = parseRotationWithDefault(empty.root(), "rotation");
	ASSERT_EQ(identity->getType(), 0u);
	const Matrix3d& m = identity.downcast<MatrixRotation>()->matrix;
	EXPECT_EQ(vectorText({m.e[0], m.e[1], m.e[2], m.e[3], m.e[4], m.e[5], m.e[6], m.e[7], m.e[8]}), "1 0 0 0 1 0 0 0 1");
}

// The scene parser's form turns the helpers' failures into its own class
// with the same message, and lets other failures pass as they are.
TEST(SceneParseUtils, ParserCallRethrowsAsSceneParserExcep)
{
	XMLText doc("<p><a>12abc</a><b>4</b></p>");
	const TiXmlElement& p = doc.root();
	EXPECT_EQ(parserCall(parseInt, p, "b"), 4);
	EXPECT_EQ(VelornTest::failureOf<SceneParserExcep>([&] { parserCall(parseInt, p, "a"); }),
		"Parse error while parsing integer from '12abc'.  (In element 'a', around line 1, column 4)");
	EXPECT_EQ(VelornTest::failureOf<SceneParserExcep>([&] { parserCall([&] { return parseBool(p, "b"); }); }),
		"Invalid boolean value (Should be 'true' or 'false').  (In element 'b', around line 1, column 16)");
	EXPECT_EQ(
		VelornTest::failureOf<VelornException>([] { parserCall([]() -> int { throw VelornException("other"); }); }), "other");
}
