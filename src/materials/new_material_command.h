#pragma once

// "New Velorn Material" adds one material of the plug-in to the document and
// selects it. Registered under its resource name, skipped when the resource
// has none.
bool RegisterNewMaterialCommand();
