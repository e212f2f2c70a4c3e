#include "materials/nk_table.h"

namespace
{

// The n-k data files that ship in the renderer's "nkdata/" folder, in the
// order of the material's cycle. "sin_bf5.NK" keeps its upper-case suffix
// because the name must match the file.
const char* const kNkFiles[] = {
	"Ag.nk",
	"Al.nk",
	"Al2o3p.nk",
	"Alas.nk",
	"Alas028t.nk",
	"Alas052t.nk",
	"Alas072t.nk",
	"Alas098t.nk",
	"Alas125t.nk",
	"Alas152t.nk",
	"Alas178t.nk",
	"Alas204t.nk",
	"Alas228t.nk",
	"Alas305t.nk",
	"Alas331t.nk",
	"Alas361t.nk",
	"Alas390t.nk",
	"Alas421t.nk",
	"Alas445t.nk",
	"Alas469t.nk",
	"Alas499t.nk",
	"Alas527t.nk",
	"Alas552t.nk",
	"Alas578t.nk",
	"Alas602t.nk",
	"Alas626t.nk",
	"Algaas0.nk",
	"Algaas1.nk",
	"Algaas10.nk",
	"Algaas2.nk",
	"Algaas3.nk",
	"Algaas4.nk",
	"Algaas5.nk",
	"Algaas6.nk",
	"Algaas7.nk",
	"Algaas8.nk",
	"Algaas9.nk",
	"Alon.nk",
	"Alsb.nk",
	"Au.nk",
	"Bk7.nk",
	"Bk7_abs.nk",
	"Caf2.nk",
	"Cdse.nk",
	"Cdte.nk",
	"Cosi2-4.nk",
	"Co_2.nk",
	"Cr.nk",
	"Cr3si.nk",
	"Cr5si3.nk",
	"Crsi2el2.nk",
	"Cu.nk",
	"Cu2o.nk",
	"Cuo.nk",
	"Diam.nk",
	"Fesi2el1.nk",
	"Fesi2el2.nk",
	"Fesi2epi.nk",
	"Gaas.nk",
	"Gaas031t.nk",
	"Gaas041t.nk",
	"Gaas060t.nk",
	"Gaas081t.nk",
	"Gaas103t.nk",
	"Gaas126t.nk",
	"Gaas150t.nk",
	"Gaas175t.nk",
	"Gaas199t.nk",
	"Gaas224t.nk",
	"Gaas249t.nk",
	"Gaas273t.nk",
	"Gaas297t.nk",
	"Gaas320t.nk",
	"Gaas344t.nk",
	"Gaas367t.nk",
	"Gaas391t.nk",
	"Gaas415t.nk",
	"Gaas443t.nk",
	"Gaas465t.nk",
	"Gaas488t.nk",
	"Gaas515t.nk",
	"Gaas546t.nk",
	"Gaas579t.nk",
	"Gaas603t.nk",
	"Gaas634t.nk",
	"Gaaso.nk",
	"Gaasox.nk",
	"Gan01.nk",
	"Gap.nk",
	"Gapox.nk",
	"Gasb.nk",
	"Gasbox.nk",
	"Ge.nk",
	"H2o.nk",
	"Hfsi2.nk",
	"Inasox.nk",
	"Ingaas.nk",
	"Inp.nk",
	"Inpox.nk",
	"Insb.nk",
	"Insbox.nk",
	"Ir.nk",
	"Ir3si5e.nk",
	"Ir3si5p.nk",
	"Kcl.nk",
	"Lasf9.nk",
	"Li.nk",
	"Lif.nk",
	"Mo.nk",
	"Mosi2-a.nk",
	"Mosi2-b.nk",
	"Nbsi-a.nk",
	"Nbsi-b.nk",
	"Ni.nk",
	"Ni2si.nk",
	"Ni3si.nk",
	"Nisi.nk",
	"Os.nk",
	"Pbs.nk",
	"Pbse.nk",
	"Pd.nk",
	"Pd2si-a.nk",
	"Pd2si-b.nk",
	"Pt.nk",
	"Resi1-75.nk",
	"Resige0.nk",
	"Resige1.nk",
	"Resige22.nk",
	"Resige39.nk",
	"Resige51.nk",
	"Resige64.nk",
	"Resige75.nk",
	"Resige83.nk",
	"Resige91.nk",
	"Rh.nk",
	"Ringas0.nk",
	"Ringas20.nk",
	"Ringas24.nk",
	"Sf11.nk",
	"Si3n4.nk",
	"Siam1.nk",
	"Siam2.nk",
	"Sicr-t02.nk",
	"Sicr-t10.nk",
	"Sicr-t15.nk",
	"Sicr-t20.nk",
	"Sicr-t25.nk",
	"Sicr-t30.nk",
	"Sicr-t35.nk",
	"Sicr-t40.nk",
	"Sicr-t45.nk",
	"Sicr.nk",
	"Sicrir.nk",
	"sin_bf5.NK",
	"Sio.nk",
	"Sio2.nk",
	"Sio2ir.nk",
	"Siop.nk",
	"Sipoly.nk",
	"Sipoly10.nk",
	"Sipoly20.nk",
	"Sipoly30.nk",
	"Sipoly40.nk",
	"Sipoly50.nk",
	"Sipoly60.nk",
	"Sipoly70.nk",
	"Sipoly80.nk",
	"Sipoly90.nk",
	"Sipore.nk",
	"Stsg0.nk",
	"Stsg064.nk",
	"Stsg123.nk",
	"Stsg169.nk",
	"Stsg229.nk",
	"Tasi2-a.nk",
	"Tasi2-b.nk",
	"Thf4.nk",
	"Ti.nk",
	"Tisi-a.nk",
	"V.nk",
	"Void.nk",
	"Vsi2-a.nk",
	"Vsi2-b.nk",
	"W.nk",
	"Wsi2-a.nk",
	"Wsi2-b.nk",
	"Y2o3.nk",
	"Zncdte0.nk",
	"Zncdte1.nk",
	"Zncdte10.nk",
	"Zncdte3.nk",
	"Zncdte5.nk",
	"Zncdte7.nk",
	"Zncdte9.nk",
	"Znse.nk",
	"Znsete0.nk",
	"Znsete1.nk",
	"Znsete10.nk",
	"Znsete3.nk",
	"Znsete5.nk",
	"Znsete7.nk",
	"Znsete9.nk",
	"Zrsi2.nk",
};

} // namespace

int32_t NkFileCount()
{
	return int32_t(sizeof(kNkFiles) / sizeof(kNkFiles[0]));
}

const char* NkFileName(int32_t index)
{
	if(index < 0 || index >= NkFileCount())
		return nullptr;
	return kNkFiles[index];
}

int32_t FindNkFile(const String& name)
{
	const String folded = name.ToLower();
	for(int32_t i = 0; i < NkFileCount(); ++i)
	{
		if(String(kNkFiles[i]).ToLower() == folded)
			return i;
	}
	return -1;
}

bool MigrateNkName(BaseContainer& data)
{
	bool changed = false;
	if(data.GetData(MAT_PHONG_NK_NAME).GetType() == DA_STRING)
	{
		const int32_t index = FindNkFile(data.GetString(MAT_PHONG_NK_NAME));
		if(index >= 0)
			data.SetInt32(MAT_PHONG_NK_FILE, index);
		data.RemoveData(MAT_PHONG_NK_NAME);
		changed = true;
	}
	// The index check admits one value past the table; NkFileName() answers
	// null there, so nothing reads past the end.
	const int32_t index = data.GetInt32(MAT_PHONG_NK_FILE);
	if(index < 0 || index > NkFileCount())
	{
		data.SetInt32(MAT_PHONG_NK_FILE, 0);
		changed = true;
	}
	return changed;
}
