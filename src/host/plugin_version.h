#pragma once

// The plug-in's version text, as the scene's metadata, the console banner
// and the About command show it.
inline constexpr const char* velorn_version_text = "Velorn for Cinema 4D 3.6.24";

// The line that frames the plug-in's banner at start-up and the console
// report of an export.
inline constexpr const char* console_banner =
	".__.--._.-._.-.__.--._.-.__.--._.-._.-.__.--._.-.__.--._.-._.-.__.--._.-.__.--._.-._.-.__.--._.-.__.--._.-._.-.__."
	"--._.-.__.--.";
