#pragma once

#include <string>

// Packed material files (.pvlm): a ZIP archive that holds a material file
// (.vlm) at its top, beside the textures it names by relative paths, which
// may lie in folders below it. docs/material-archives.md describes the
// layout.

// What unpacking an archive gave.
struct ArchiveUnpack
{
	bool ok = false;
	// The material file in the folder: the first entry of the archive that
	// stands at its top and ends in ".vlm" (in any case).
	std::string material_file;
	// Why nothing was unpacked, for the console.
	std::string message;
};

// Unpacks the archive into folder, which must not exist yet and is made.
// Nothing is written unless every entry's name stays inside the folder and
// the archive has a material file at its top; an entry that fails to unpack
// (a damaged archive) removes the folder with all that was written.
ArchiveUnpack unpackMaterialArchive(const std::string& archive, const std::string& folder);

// Why an entry's name would unpack outside the target folder: an absolute
// path, a drive letter or any other colon, a backslash, a ".." part or an
// empty name or part. Empty when the name is safe.
std::string unsafeEntryReason(const std::string& name);

// Removes path and, for a folder, all it holds: meant for the folders the
// unpacking made, which hold plain files and folders only.
void removeTree(const std::string& path);
