#include "export/material_hooks.h"

namespace
{

const MaterialExportHooks* installed = nullptr;

} // namespace

void SetMaterialExportHooks(const MaterialExportHooks* hooks)
{
	installed = hooks;
}

const MaterialExportHooks* GetMaterialExportHooks()
{
	return installed;
}

Velorn::Reference<Velorn::IESProfile> iesProfile(Velorn::UID material, const String& path)
{
	Velorn::Reference<Velorn::IESProfile> profile = new Velorn::IESProfile();
	profile->material_uid = material;
	profile->path = Velorn::String(path.GetStdString());
	return profile;
}
