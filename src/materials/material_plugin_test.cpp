#include "materials/material_plugin.h"

#include "c4d/base_shader.h"
#include "c4d/events.h"
#include "c4d/plugin_test_helpers.h"
#include "materials/material_rules.h"
#include "materials/material_test_helpers.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace
{

struct Expected
{
	int32_t id;
	int32_t type;
	GeData value;
};

const int32_t L = DA_LONG;
const int32_t R = DA_REAL;
const int32_t V = DA_VECTOR;
const int32_t S = DA_STRING;

// What a new material's container holds, in the order Init sets it.
std::vector<Expected> expectedInit()
{
	std::vector<Expected> list = {
		{6024, L, 6025}, {6032, L, 6034}, {6333, L, 0}, {6334, L, 0}, {6049, L, 1}, {6329, S, String()},
		// Albedo, exponent, sigma, blend factor, bump, displacement, normal
		// map, emission texture, absorption layer.
		{6114, V, Vector(1, 1, 1)}, {6081, R, 0.8}, {6115, R, 2.2}, {6119, R, 2.2}, {6120, R, 0.0}, {6121, R, 1.0},
		{6122, R, 0.0},
		{6040, R, 1000.0}, {6201, R, 1.0}, {6202, R, 0.0}, {6203, R, 1.0}, {6204, R, 0.0}, {6289, L, 0},
		{6079, R, 0.2}, {6206, R, 1.0}, {6207, R, 0.0}, {6208, R, 1.0}, {6209, R, 0.0}, {6288, L, 0},
		{6260, R, 0.5}, {6053, R, 1.0}, {6054, R, 0.0}, {6055, R, 1.0}, {6056, R, 0.0}, {6291, L, 0},
		{6070, R, 1.0}, {6071, R, 0.0}, {6072, R, 0.001}, {6073, R, 0.0}, {6287, L, 0},
		{6075, R, 1.0}, {6076, R, 0.0}, {6077, R, 0.001}, {6078, R, 0.0}, {6290, L, 0},
		{6295, R, 1.0}, {6296, R, 0.0}, {6297, R, 1.0}, {6298, R, 0.0},
		{6065, R, 2.2}, {6066, R, 0.0}, {6067, R, 1.0}, {6068, R, 0.0},
		{6271, V, Vector(1, 1, 1)}, {6272, R, 0.8}, {6273, R, 2.2}, {6275, R, 2.2}, {6276, R, 0.0}, {6277, R, 1.0},
		{6278, R, 0.0},
		{6265, L, 1024}, {6266, L, 1024},
		{6038, R, 1.6}, {6039, L, 0}, {6144, L, 0}, {6299, L, 1}, {6261, L, 0}, {6304, R, 1.5}, {6305, L, 0},
		{6327, R, 1.5}, {6090, L, 0},
		// Emission: table start and end unset, the values a long 0.
		{6057, L, 6104}, {6060, V, Vector(1, 1, 1)}, {6061, R, 1.0}, {6089, R, 0.8}, {6062, R, 6500.0},
		{6063, R, 1.0}, {6254, R, 100.0}, {6255, R, 600.0}, {6256, R, 1.0}, {6257, R, 1.0}, {6245, R, 1.0},
		{6243, L, 0},
		// Medium absorption and scattering: table ends as longs.
		{6210, L, 6104}, {6129, V, Vector(1, 1, 1)}, {6130, R, 1.0}, {6216, R, 1.0}, {6224, R, 6500.0},
		{6225, R, 1.0}, {6246, R, 100.0}, {6247, R, 600.0}, {6248, R, 1.0}, {6249, R, 1.0}, {6228, R, 0.0},
		{6230, L, 400}, {6231, L, 700}, {6232, S, String("0.1 0.1")},
		{6217, L, 6107}, {6133, V, Vector(0, 0, 0)}, {6134, R, 1.0}, {6223, R, 1.0}, {6226, R, 6500.0},
		{6227, R, 1.0}, {6250, R, 100.0}, {6251, R, 600.0}, {6252, R, 1.0}, {6253, R, 1.0}, {6229, R, 0.0},
		{6234, L, 400}, {6235, L, 700}, {6236, S, String("0.1 0.1")},
		// Medium.
		{6041, L, 6042}, {6045, L, 10}, {6046, R, 1.6}, {6047, R, 0.0}, {6048, L, 0}, {6126, R, 0.05},
		{6127, R, 0.25}, {6128, R, 0.5}, {6284, R, 2.0}, {6285, V, Vector(0, 0, 0)}, {6136, L, 6137},
		{6141, V, Vector(0.9, 0.9, 0.9)}, {6142, R, 2.2},
	};
	// The two spectrum channels, by offset.
	for(const auto& [base, uniform] : {std::pair<int32_t, double>{10000, 0.0}, {16000, 0.5}})
	{
		const std::vector<Expected> offsets = {{1, L, 6107}, {3, V, Vector(0.8, 0.8, 0.8)}, {4, R, 0.8},
			{5, R, 2.2}, {7, R, 6500.0}, {8, R, 1.0}, {10, R, 450.0}, {11, R, 200.0}, {12, R, 1.0}, {13, R, 0.0},
			{15, R, uniform}, {17, R, 2.2}, {18, R, 0.0}, {19, R, 1.0}, {20, R, 0.0}};
		for(const Expected& e : offsets)
			list.push_back({base + e.id, e.type, e.value});
	}
	// The six real channels.
	for(const auto& [base, value] : {std::pair<int32_t, double>{11000, 1000.0}, {12000, 0.3}, {15000, 0.3},
			{13000, 1.0}, {14000, 1.0}, {17000, 0.5}})
	{
		const std::vector<Expected> offsets = {{17, R, 1.0}, {18, R, 0.0}, {19, R, 1.0}, {20, R, 0.0},
			{21, R, value}, {22, L, 0}};
		for(const Expected& e : offsets)
			list.push_back({base + e.id, e.type, e.value});
	}
	// The kind switch rule for a diffuse material, in the rule's order.
	const int32_t switches[][2] = {{6003, 1}, {6004, 0}, {6010, 0}, {6008, 0}, {6009, 0}, {6011, 0}, {6280, 0},
		{6303, 0}, {6313, 0}, {6307, 0}, {6310, 0}, {6311, 0}, {6317, 0}, {6315, 0}, {6316, 0}, {6318, 0},
		{6319, 0}};
	for(const auto& s : switches)
		list.push_back({s[0], L, s[1]});
	// Blend factor and normal map off; bump, displacement and emission unset.
	list.push_back({6002, L, 0});
	list.push_back({6292, L, 0});
	return list;
}

// A shader plug-in that records the messages it is sent, by shader name.
std::vector<std::string> received;

class RecordingShader : public ShaderData
{
public:
	static NodeData* Alloc() { return new RecordingShader(); }

	bool Message(GeListNode* node, int32_t type, void*) override
	{
		if(type == MSG_UPDATE)
			received.push_back(static_cast<BaseList2D*>(node)->GetName().GetStdString());
		return true;
	}
};

const int32_t kRecordingShader = 1099001;

} // namespace

TEST_F(MaterialTest, NewMaterialHoldsTheDefaultsInInitOrder)
{
	BaseMaterial* mat = newMaterial();
	const BaseContainer& data = *mat->GetDataInstance();
	const std::vector<Expected> expected = expectedInit();
	ASSERT_EQ(data.GetCount(), (int32_t)expected.size());
	int32_t index = 0;
	for(const auto& [id, value] : data)
	{
		const Expected& e = expected[index++];
		SCOPED_TRACE("entry " + std::to_string(index - 1) + ", id " + std::to_string(e.id));
		EXPECT_EQ(id, e.id);
		EXPECT_EQ(value.GetType(), e.type);
		EXPECT_EQ(value, e.value);
	}
	// Not set by Init: readers take their own defaults.
	for(int32_t id : {6328, 6241, 6242, 6145, 6005, 6006, 6007})
		EXPECT_EQ(data.GetDataPointer(id), nullptr) << id;
	EXPECT_EQ(data.GetFloat(MAT_EMISSION_TABLE_START, 400.0), 400.0);
}

TEST_F(MaterialTest, FactoryClearsTheViewValuesAndCountsChanges)
{
	BaseMaterial* mat = newMaterial();
	VelornMaterial* data = plugin(mat);
	for(int i = 0; i < 3; ++i)
	{
		EXPECT_EQ(data->viewColour[i], 0.0f);
		EXPECT_EQ(data->viewEmission[i], 0.0f);
	}
	EXPECT_FALSE(data->HasPreviewFailed());
	EXPECT_EQ(data->GetDirtyCount(), 0u);
	mat->SetParameter(DescID(MAT_ALBEDO_SCALE), GeData(0.5));
	EXPECT_EQ(data->GetDirtyCount(), 1u);
	EXPECT_EQ(mat->GetDataInstance()->GetFloat(MAT_ALBEDO_SCALE), 0.5);
	mat->Message(MSG_UPDATE);
	EXPECT_EQ(data->GetDirtyCount(), 2u);
	EXPECT_EQ(data->GetRenderInfo(mat), 0x6000006);

	const PluginRecord* record = PluginRegistry::get().find(ID_VELORN_MATERIAL);
	ASSERT_NE(record, nullptr);
	EXPECT_EQ(record->kind, PluginKind::Material);
	EXPECT_EQ(record->name, String("Velorn Material"));
	EXPECT_EQ(record->info, 0x20000001);
	EXPECT_EQ(record->description, String("Mvelornmaterial"));
}

TEST(KindSwitchRule, SetsTheDefaultPagesOfEachKind)
{
	// Columns: 6003 6004 6010 6008 6009 6011 6280 6303 6313 6307 6310 6311
	// 6317 6315 6316 6318 6319, then 6002 6005 6292 6006 6007; K keeps.
	const int32_t ids[] = {6003, 6004, 6010, 6008, 6009, 6011, 6280, 6303, 6313, 6307, 6310, 6311, 6317, 6315,
		6316, 6318, 6319, 6002, 6005, 6292, 6006, 6007};
	const int K = -1;
	const struct
	{
		int32_t kind;
		int values[22];
	} rows[] = {
		{6025, {1, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, K, K, K, K, K}},
		{6026, {1, 0, 0, 0, 1, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, K, K, K, K, K}},
		{6027, {1, 1, 0, 1, 0, 0, 0, 0, 0, 0, 0, 0, 0, K, 0, 0, 0, K, K, K, K, K}},
		{6028, {1, 0, K, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, K, K, K, K, K}},
		{6029, {0, 0, 1, 0, 0, 1, K, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, K, K, K, K, K}},
		{6030, {0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1, 0, 0, 0, 0}},
		{6031, {0, 0, 1, 1, 0, 0, K, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, K, K, K, K, K}},
		{6262, {0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, K, 0, 0, 0, 0}},
		{6300, {0, 0, 0, 0, 0, 0, 0, 1, 0, 1, 1, 1, 0, 1, 0, 0, 0, K, K, K, K, K}},
		{6301, {0, 0, 0, 0, 0, 0, 0, 0, 1, 0, 0, 1, 1, 1, 1, 1, 1, K, K, K, K, K}},
	};
	for(const auto& row : rows)
	{
		// From all on and from all off, so that a kept switch shows either way.
		for(int before : {0, 1})
		{
			SCOPED_TRACE("kind " + std::to_string(row.kind) + " from " + std::to_string(before));
			BaseContainer data;
			for(int32_t id : ids)
				data.SetBool(id, before != 0);
			data.SetFloat(MAT_ALBEDO_SCALE, 0.25);
			EXPECT_TRUE(applyKindSwitchRule(data, row.kind));
			for(int i = 0; i < 22; ++i)
				EXPECT_EQ(data.GetBool(ids[i]), row.values[i] == K ? before != 0 : row.values[i] != 0) << ids[i];
			EXPECT_EQ(data.GetCount(), 23);
			EXPECT_EQ(data.GetFloat(MAT_ALBEDO_SCALE), 0.25);
		}
	}
	BaseContainer data;
	data.SetBool(MAT_USE_ALBEDO, false);
	EXPECT_FALSE(applyKindSwitchRule(data, 6033));
	EXPECT_FALSE(data.GetBool(MAT_USE_ALBEDO));
	EXPECT_EQ(data.GetCount(), 1);
}

TEST_F(MaterialTest, ValidationResetsTheSwitchesOnlyWhenTheKindChanged)
{
	// A user's unticked switch survives validation while the kind stays.
	BaseMaterial* mat = newMaterial();
	BaseContainer* data = mat->GetDataInstance();
	mat->SetParameter(DescID(MAT_USE_ALBEDO), GeData(0));
	mat->Message(MSG_DESCRIPTION_VALIDATE);
	EXPECT_FALSE(data->GetBool(MAT_USE_ALBEDO));

	// A new kind brings its pages; unticking one of them then sticks too.
	BaseShader* shader = BaseShader::Alloc(Xbitmap);
	mat->InsertShader(shader);
	data->SetLink(MAT_ALBEDO_LINK, shader);
	data->SetVector(MAT_ALBEDO_COLOUR, Vector(0.1, 0.2, 0.3));
	mat->SetParameter(DescID(MAT_TYPE), GeData(MAT_TYPE_PHONG));
	mat->Message(MSG_DESCRIPTION_VALIDATE);
	EXPECT_TRUE(data->GetBool(MAT_USE_ALBEDO));
	EXPECT_TRUE(data->GetBool(MAT_USE_SPECULAR));
	EXPECT_TRUE(data->GetBool(MAT_USE_EXPONENT));
	mat->SetParameter(DescID(MAT_USE_EXPONENT), GeData(0));
	mat->Message(MSG_DESCRIPTION_VALIDATE);
	EXPECT_FALSE(data->GetBool(MAT_USE_EXPONENT));

	// Blend and back: only the switches change.
	mat->SetParameter(DescID(MAT_TYPE), GeData(MAT_TYPE_BLEND));
	mat->Message(MSG_DESCRIPTION_VALIDATE);
	EXPECT_TRUE(data->GetBool(MAT_USE_ALPHA));
	EXPECT_FALSE(data->GetBool(MAT_USE_ALBEDO));
	mat->SetParameter(DescID(MAT_TYPE), GeData(MAT_TYPE_DIFFUSE));
	mat->Message(MSG_DESCRIPTION_VALIDATE);
	EXPECT_TRUE(data->GetBool(MAT_USE_ALBEDO));
	EXPECT_FALSE(data->GetBool(MAT_USE_SPECULAR));
	EXPECT_EQ(data->GetLink(MAT_ALBEDO_LINK, doc, Xbase), shader);
	EXPECT_EQ(data->GetVector(MAT_ALBEDO_COLOUR), Vector(0.1, 0.2, 0.3));
}

TEST_F(MaterialTest, ALoadedMaterialKeepsItsStoredSwitches)
{
	// As a document loads: Init's defaults, then the file's values written
	// straight into the container.
	BaseMaterial* mat = newMaterial();
	BaseContainer* data = mat->GetDataInstance();
	data->SetInt32(MAT_TYPE, MAT_TYPE_PHONG);
	data->SetBool(MAT_USE_ALBEDO, false);
	data->SetBool(MAT_USE_SPECULAR, true);
	data->SetBool(MAT_USE_EXPONENT, false);
	mat->Message(MSG_DESCRIPTION_VALIDATE);
	EXPECT_FALSE(data->GetBool(MAT_USE_ALBEDO));
	EXPECT_FALSE(data->GetBool(MAT_USE_EXPONENT));

	// Its first change of kind still resets the switches.
	BaseMaterial* other = newMaterial();
	other->GetDataInstance()->SetInt32(MAT_TYPE, MAT_TYPE_PHONG);
	other->GetDataInstance()->SetBool(MAT_USE_ALBEDO, false);
	other->SetParameter(DescID(MAT_TYPE), GeData(MAT_TYPE_DIFFUSE));
	other->Message(MSG_DESCRIPTION_VALIDATE);
	EXPECT_TRUE(other->GetDataInstance()->GetBool(MAT_USE_ALBEDO));
	EXPECT_FALSE(other->GetDataInstance()->GetBool(MAT_USE_SPECULAR));
}

TEST_F(MaterialTest, MessagesReachTheLinkedShadersInOrder)
{
	ASSERT_TRUE(RegisterShaderPlugin(kRecordingShader, String("Recorder"), 0, RecordingShader::Alloc,
		String(), 0));
	BaseMaterial* mat = newMaterial();
	const int32_t links[] = {6118, 6069, 6294, 6074, 6064, 6200, 6205, 6274, 6052, 10016, 11016, 12016, 13016,
		14016, 15016, 16016, 17016};
	// Linked in reverse, so that the order comes from the message, not
	// from the shader list.
	for(int i = 16; i >= 0; --i)
	{
		BaseShader* shader = BaseShader::Alloc(kRecordingShader);
		ASSERT_NE(shader, nullptr);
		shader->SetName(String(std::to_string(links[i])));
		mat->InsertShader(shader);
		mat->GetDataInstance()->SetLink(links[i], shader);
	}
	received.clear();
	mat->Message(MSG_UPDATE);
	std::vector<std::string> expected;
	for(int32_t id : links)
		expected.push_back(std::to_string(id));
	EXPECT_EQ(received, expected);
	received.clear();
}

TEST_F(MaterialTest, MarkingReplacesTheSixMaterialLinksAndNothingElse)
{
	BaseMaterial* old_mat = newMaterial(MAT_TYPE_DIFFUSE, "old");
	BaseMaterial* new_mat = newMaterial(MAT_TYPE_DIFFUSE, "new");
	BaseMaterial* third = newMaterial(MAT_TYPE_DIFFUSE, "third");
	BaseMaterial* user = newMaterial(MAT_TYPE_DIFFUSE, "user");
	BaseContainer* data = user->GetDataInstance();
	const int32_t six[] = {6259, 6269, 6306, 6325, 6326, 6330};
	for(int32_t id : six)
		data->SetLink(id, old_mat);
	// A shader link and a link of no material parameter keep their targets.
	BaseShader* shader = BaseShader::Alloc(Xbitmap);
	user->InsertShader(shader);
	data->SetLink(MAT_ALBEDO_LINK, shader);
	data->SetLink(6400, old_mat);
	BaseContainer* other = third->GetDataInstance();
	other->SetLink(MAT_BLEND_A, user);
	other->SetLink(MAT_BLEND_B, old_mat);

	MarkMaterials replace;
	replace.omat = old_mat;
	replace.nmat = new_mat;
	user->Message(MSG_MULTI_MARKMATERIALS, &replace);
	for(int32_t id : six)
		EXPECT_EQ(data->GetLink(id, doc, Mbase), new_mat) << id;
	EXPECT_EQ(data->GetLink(MAT_ALBEDO_LINK, doc, Xbase), shader);
	EXPECT_EQ(data->GetLink(6400), old_mat);
	// Only the material that got the message changed.
	EXPECT_EQ(other->GetLink(MAT_BLEND_A, doc, Mbase), user);
	EXPECT_EQ(other->GetLink(MAT_BLEND_B, doc, Mbase), old_mat);
}

TEST_F(MaterialTest, MarkingWithoutDataMarksTheMaterialsTheKindUses)
{
	BaseMaterial* a = newMaterial(MAT_TYPE_DIFFUSE, "a");
	BaseMaterial* b = newMaterial(MAT_TYPE_DIFFUSE, "b");
	BaseMaterial* medium = newMaterial(MAT_TYPE_DIFFUSE, "medium");
	BaseMaterial* substrate = newMaterial(MAT_TYPE_DIFFUSE, "substrate");
	BaseMaterial* blend = newMaterial(MAT_TYPE_BLEND, "blend");
	BaseContainer* data = blend->GetDataInstance();
	data->SetLink(MAT_BLEND_A, a);
	data->SetLink(MAT_BLEND_B, b);
	data->SetLink(MAT_MEDIUM_SOURCE, medium);
	data->SetLink(MAT_COAT_SUBSTRATE, substrate);
	blend->Message(MSG_MULTI_MARKMATERIALS, nullptr);
	EXPECT_TRUE(a->GetBit(BIT_MATMARK));
	EXPECT_TRUE(b->GetBit(BIT_MATMARK));
	EXPECT_FALSE(medium->GetBit(BIT_MATMARK));
	EXPECT_FALSE(substrate->GetBit(BIT_MATMARK));
	EXPECT_FALSE(blend->GetBit(BIT_MATMARK));

	// A specular material uses its medium source while the medium is on.
	BaseMaterial* glass = newMaterial(MAT_TYPE_SPECULAR, "glass");
	glass->GetDataInstance()->SetLink(MAT_MEDIUM_SOURCE, medium);
	glass->GetDataInstance()->SetLink(MAT_BLEND_A, substrate);
	glass->Message(MSG_MULTI_MARKMATERIALS, nullptr);
	EXPECT_TRUE(medium->GetBit(BIT_MATMARK));
	EXPECT_FALSE(substrate->GetBit(BIT_MATMARK));
}

TEST_F(MaterialTest, AChangeMarksOnlyTheMaterialsThatUseIt)
{
	BaseMaterial* changed = newMaterial(MAT_TYPE_DIFFUSE, "changed");
	BaseMaterial* blend = newMaterial(MAT_TYPE_BLEND, "blend");
	BaseMaterial* coating = newMaterial(MAT_TYPE_COATING, "coating");
	BaseMaterial* unrelated = newMaterial(MAT_TYPE_BLEND, "unrelated");
	BaseMaterial* phong = newMaterial(MAT_TYPE_PHONG, "phong");
	blend->GetDataInstance()->SetLink(MAT_BLEND_B, changed);
	// Through the blend, two links away.
	coating->GetDataInstance()->SetLink(MAT_COAT_SUBSTRATE, blend);
	// A blend that links only to itself: the walk must end, and it is no user.
	unrelated->GetDataInstance()->SetLink(MAT_BLEND_A, unrelated);
	// A Phong material does not use MAT_BLEND_A while its blend factor is off.
	phong->GetDataInstance()->SetLink(MAT_BLEND_A, changed);

	BaseMaterial* all[] = {changed, blend, coating, unrelated, phong};
	std::vector<uint32_t> before;
	for(BaseMaterial* m : all)
		before.push_back(plugin(m)->GetDirtyCount() + m->GetDirty(DIRTYFLAGS_DATA));
	const int32_t events = EventCount();
	changed->Message(MSG_MATERIAL_CHANGED);
	const bool marked[] = {false, true, true, false, false};
	for(int i = 0; i < 5; ++i)
	{
		SCOPED_TRACE(all[i]->GetName().GetStdString());
		const uint32_t after = plugin(all[i])->GetDirtyCount() + all[i]->GetDirty(DIRTYFLAGS_DATA);
		EXPECT_EQ(after > before[i], marked[i]);
	}
	EXPECT_GT(EventCount(), events);
}

TEST_F(MaterialTest, TheCycleTestEndsOnLoops)
{
	BaseMaterial* blend = newMaterial(MAT_TYPE_BLEND, "blend");
	BaseMaterial* coating = newMaterial(MAT_TYPE_COATING, "coating");
	BaseMaterial* elsewhere = newMaterial(MAT_TYPE_DIFFUSE, "elsewhere");
	blend->GetDataInstance()->SetLink(MAT_BLEND_A, coating);
	coating->GetDataInstance()->SetLink(MAT_COAT_SUBSTRATE, blend);
	EXPECT_TRUE(materialReaches(blend, coating, doc));
	EXPECT_TRUE(materialReaches(coating, blend, doc));
	EXPECT_TRUE(materialReaches(blend, blend, doc));
	EXPECT_FALSE(materialReaches(blend, elsewhere, doc));

	BaseMaterial* self = newMaterial(MAT_TYPE_BLEND, "self");
	self->GetDataInstance()->SetLink(MAT_BLEND_B, self);
	EXPECT_FALSE(materialReaches(self, elsewhere, doc));
	EXPECT_TRUE(materialReaches(self, self, doc));
	// Message 31 walks the same loops.
	elsewhere->Message(MSG_MATERIAL_CHANGED);
}

TEST_F(MaterialTest, ALinkThatWouldLoopIsRefused)
{
	BaseMaterial* blend = newMaterial(MAT_TYPE_BLEND, "blend");
	BaseMaterial* coating = newMaterial(MAT_TYPE_COATING, "coating");
	BaseMaterial* plain = newMaterial(MAT_TYPE_DIFFUSE, "plain");
	EXPECT_TRUE(blend->SetParameter(DescID(MAT_BLEND_A), GeData(coating)));
	EXPECT_FALSE(coating->SetParameter(DescID(MAT_COAT_SUBSTRATE), GeData(blend)));
	EXPECT_EQ(coating->GetDataInstance()->GetLink(MAT_COAT_SUBSTRATE, doc, Mbase), nullptr);
	EXPECT_FALSE(blend->SetParameter(DescID(MAT_BLEND_B), GeData(blend)));
	EXPECT_TRUE(coating->SetParameter(DescID(MAT_COAT_SUBSTRATE), GeData(plain)));
	EXPECT_EQ(coating->GetDataInstance()->GetLink(MAT_COAT_SUBSTRATE, doc, Mbase), plain);
}

TEST_F(MaterialTest, ALinkToAFreedMaterialReadsEmpty)
{
	BaseMaterial* blend = newMaterial(MAT_TYPE_BLEND, "blend");
	BaseMaterial* input = newMaterial(MAT_TYPE_DIFFUSE, "input");
	ASSERT_TRUE(blend->SetParameter(DescID(MAT_BLEND_A), GeData(input)));
	EXPECT_EQ(blend->GetDataInstance()->GetLink(MAT_BLEND_A, doc, Mbase), input);
	BaseMaterial::Free(input);
	EXPECT_EQ(blend->GetDataInstance()->GetLink(MAT_BLEND_A, doc, Mbase), nullptr);
	GeData value;
	blend->GetParameter(DescID(MAT_BLEND_A), value);
	EXPECT_EQ(value.GetLink(), nullptr);
	// Marking and the cycle test pass over the empty link.
	blend->Message(MSG_MULTI_MARKMATERIALS, nullptr);
	BaseMaterial* other = newMaterial(MAT_TYPE_DIFFUSE, "other");
	EXPECT_FALSE(materialReaches(blend, other, doc));
}
