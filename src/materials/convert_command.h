#pragma once

// "Convert Materials" replaces the host's standard materials of the document
// by materials of the plug-in. Registered under its resource name, skipped
// when the resource has none.
bool RegisterConvertMaterialsCommand();
