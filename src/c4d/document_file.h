#pragma once

#include "c4d/base_document.h"
#include "c4d/filename.h"

#include "support/exceptions.h"

#include <string>

// A document file that cannot be read. The message is
// "<file>: <place>: <what is wrong>", the place a path into the JSON text
// such as objects[2].tags[0].params[1].value; text that is not JSON at all
// gives "<file>:<line>:<column>: not valid JSON".
class DocumentFileExcep : public Velorn::MessageException
{
public:
	using MessageException::MessageException;
};

// Document files hold a whole document as JSON; docs/document-format.md
// describes the form. Every node the reader allocates gets its registered
// defaults (node_defaults.h) first and the file's parameters on top.
//
// Reads a document file; the caller owns the document (BaseDocument::Free).
// When the file names no document path and name, they are those of file.
// An unreadable file throws FileUtilsExcep, a bad document DocumentFileExcep.
BaseDocument* LoadDocumentFile(const Filename& file);
// Reads text as LoadDocumentFile reads a file: file names the place in
// messages, and model files are found relative to its directory.
BaseDocument* ReadDocumentText(const std::string& text, const Filename& file);

// Writes doc in the form LoadDocumentFile reads. Polygon objects are written
// with their points and polygons inline.
void SaveDocumentFile(const BaseDocument& doc, const Filename& file);
std::string WriteDocumentText(const BaseDocument& doc);
