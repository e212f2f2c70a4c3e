#pragma once

// Shared by the scene parser's tests: reading elements from text, scene
// files in scratch directories, and the places in messages.

#include "reader/reader_test_helpers.h"
#include "reader/scene_parser.h"
#include "scene/geometry_test_helpers.h"
#include "support/test_files.h"

#include <string>

namespace VelornTest
{

// The place of an element in a message, as the parse helpers write it:
// TinyXML's row and column of the element's '<', counted from 1.
inline std::string place(const char* element, int row, int column)
{
	return "  (In element '" + std::string(element) + "', around line " + std::to_string(row) + ", column " +
		   std::to_string(column) + ")";
}

// The node of a scene element given as text, read by a new parser.
inline Velorn::Reference<Velorn::SceneNode> parseNode(const std::string& xml, const std::string& dir = "")
{
	XMLText text(xml);
	Velorn::SceneParser parser;
	return parser.parseElement(text.root(), dir);
}

// Writes a file and returns its path.
inline std::string putFile(const TempDir& dir, const std::string& name, const std::string& content)
{
	const std::string path = dir.file(name);
	writeFile(path, content);
	return path;
}

// A scene file (root scene) of the given children.
inline std::string sceneText(const std::string& children) { return "<scene>\n" + children + "</scene>\n"; }
inline std::string sceneDataText(const std::string& children) { return "<scenedata>\n" + children + "</scenedata>\n"; }

// The root of main.vls, a scene file of the given children written to dir.
inline Velorn::Reference<Velorn::SceneNodeRoot> parseScene(
	const TempDir& dir, const std::string& children, const std::string& settings_override = "")
{
	Velorn::SceneParser parser;
	return parser.parseFile(putFile(dir, "main.vls", sceneText(children)), settings_override);
}

} // namespace VelornTest
