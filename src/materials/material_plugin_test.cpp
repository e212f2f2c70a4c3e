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
	const Vector one(1, 1, 1), zero(0, 0, 0);
	std::vector<Expected> list = {
		{6024, L, 6025}, {6032, L, 6034}, {6333, L, 0}, {6334, L, 0}, {6049, L, 1}, {6329, S, String()},
		{6114, V, one}, {6081, R, 0.8}, {6115, R, 2.2}, {6119, R, 2.2}, {6120, R, 0.0}, {6121, R, 1.0},
		{6122, R, 0.0}, {6040, R, 1000.0}, {6201, R, 1.0}, {6202, R, 0.0}, {6203, R, 1.0}, {6204, R, 0.0},
		{6289, L, 0}, {6079, R, 0.2}, {6206, R, 1.0}, {6207, R, 0.0}, {6208, R, 1.0}, {6209, R, 0.0}, {6288, L, 0},
		{6260, R, 0.5}, {6053, R, 1.0}, {6054, R, 0.0}, {6055, R, 1.0}, {6056, R, 0.0}, {6291, L, 0}, {6070, R, 1.0},
		{6071, R, 0.0}, {6072, R, 0.001}, {6073, R, 0.0}, {6287, L, 0}, {6075, R, 1.0}, {6076, R, 0.0},
		{6077, R, 0.001}, {6078, R, 0.0}, {6290, L, 0}, {6295, R, 1.0}, {6296, R, 0.0}, {6297, R, 1.0},
		{6298, R, 0.0}, {6065, R, 2.2}, {6066, R, 0.0}, {6067, R, 1.0}, {6068, R, 0.0}, {6271, V, one},
		{6272, R, 0.8}, {6273, R, 2.2}, {6275, R, 2.2}, {6276, R, 0.0}, {6277, R, 1.0}, {6278, R, 0.0},
		{6265, L, 1024}, {6266, L, 1024}, {6038, R, 1.6}, {6039, L, 0}, {6144, L, 0}, {6299, L, 1}, {6261, L, 0},
		{6304, R, 1.5}, {6305, L, 0}, {6327, R, 1.5}, {6090, L, 0},
		// Emission: no table start or end; the table values are longs.
		{6057, L, 6104}, {6060, V, one}, {6061, R, 1.0}, {6089, R, 0.8}, {6062, R, 6500.0}, {6063, R, 1.0},
		{6254, R, 100.0}, {6255, R, 600.0}, {6256, R, 1.0}, {6257, R, 1.0}, {6245, R, 1.0}, {6243, L, 0},
		// Absorption and scattering: the table ends are longs.
		{6210, L, 6104}, {6129, V, one}, {6130, R, 1.0}, {6216, R, 1.0}, {6224, R, 6500.0}, {6225, R, 1.0},
		{6246, R, 100.0}, {6247, R, 600.0}, {6248, R, 1.0}, {6249, R, 1.0}, {6228, R, 0.0}, {6230, L, 400},
		{6231, L, 700}, {6232, S, String("0.1 0.1")}, {6217, L, 6107}, {6133, V, zero}, {6134, R, 1.0},
		{6223, R, 1.0}, {6226, R, 6500.0}, {6227, R, 1.0}, {6250, R, 100.0}, {6251, R, 600.0}, {6252, R, 1.0},
		{6253, R, 1.0}, {6229, R, 0.0}, {6234, L, 400}, {6235, L, 700}, {6236, S, String("0.1 0.1")}, {6041, L, 6042},
		{6045, L, 10}, {6046, R, 1.6}, {6047, R, 0.0}, {6048, L, 0}, {6126, R, 0.05}, {6127, R, 0.25}, {6128, R, 0.5},
		{6284, R, 2.0}, {6285, V, zero}, {6136, L, 6137}, {6141, V, Vector(0.9, 0.9, 0.9)}, {6142, R, 2.2},
	};
	// Generic channels by offset: two spectrum channels, then six real ones.
	for(const auto& [base, uniform] : {std::pair<int32_t, double>{10000, 0.0}, {16000, 0.5}})
		for(const Expected& e : std::vector<Expected>{{1, L, 6107}, {3, V, Vector(0.8, 0.8, 0.8)}, {4, R, 0.8},
				{5, R, 2.2}, {7, R, 6500.0}, {8, R, 1.0}, {10, R, 450.0}, {11, R, 200.0}, {12, R, 1.0},
				{13, R, 0.0}, {15, R, uniform}, {17, R, 2.2}, {18, R, 0.0}, {19, R, 1.0}, {20, R, 0.0}})
			list.push_back({base + e.id, e.type, e.value});
	for(const auto& [base, value] : {std::pair<int32_t, double>{11000, 1000.0}, {12000, 0.3}, {15000, 0.3},
			{13000, 1.0}, {14000, 1.0}, {17000, 0.5}})
		for(const Expected& e : std::vector<Expected>{{17, R, 1.0}, {18, R, 0.0}, {19, R, 1.0}, {20, R, 0.0},
				{21, R, value}, {22, L, 0}})
			list.push_back({base + e.id, e.type, e.value});
	// The diffuse kind's switches in the rule's order, then blend factor and
	// normal map off.
	for(const auto& [id, on] : std::vector<std::pair<int32_t, int32_t>>{{6003, 1}, {6004, 0}, {6010, 0}, {6008, 0},
			{6009, 0}, {6011, 0}, {6280, 0}, {6303, 0}, {6313, 0}, {6307, 0}, {6310, 0}, {6311, 0}, {6317, 0},
			{6315, 0}, {6316, 0}, {6318, 0}, {6319, 0}, {6002, 0}, {6292, 0}})
		list.push_back({id, L, on});
	return list;
}

// Records the names of the shaders sent MSG_UPDATE.
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

} // namespace

TEST_F(MaterialTest, NewMaterialHoldsTheDefaultsInInitOrder)
{
	const BaseContainer& data = *newMaterial()->GetDataInstance();
	const std::vector<Expected> expected = expectedInit();
	ASSERT_EQ(data.GetCount(), (int32_t)expected.size());
	size_t index = 0;
	for(const auto& [id, value] : data)
	{
		const Expected& e = expected[index++];
		SCOPED_TRACE("entry " + std::to_string(index - 1) + ", id " + std::to_string(e.id));
		EXPECT_EQ(id, e.id);
		EXPECT_EQ(value.GetType(), e.type);
		EXPECT_EQ(value, e.value);
	}
	// Not set by Init: bump, displacement, emission and the n-k name among them.
	for(int32_t id : {6328, 6241, 6242, 6145, 6005, 6006, 6007})
		EXPECT_EQ(data.GetDataPointer(id), nullptr) << id;
}

TEST_F(MaterialTest, RegistrationAndChangeCount)
{
	BaseMaterial* mat = newMaterial();
	mat->SetParameter(DescID(MAT_ALBEDO_SCALE), GeData(0.5));
	mat->Message(MSG_UPDATE);
	EXPECT_EQ(plugin(mat)->GetDirtyCount(), 2u);
	EXPECT_EQ(plugin(mat)->GetRenderInfo(mat), 0x6000006);
	EXPECT_EQ(PluginRegistry::get().find(ID_VELORN_MATERIAL)->info, 0x20000001);
	EXPECT_EQ(PluginRegistry::get().find(ID_VELORN_MATERIAL)->description, String("Mvelornmaterial"));
}

TEST(KindSwitchRule, SetsTheDefaultPagesOfEachKind)
{
	const int32_t ids[] = {6003, 6004, 6010, 6008, 6009, 6011, 6280, 6303, 6313, 6307, 6310, 6311, 6317, 6315,
		6316, 6318, 6319, 6002, 6005, 6292, 6006, 6007};
	const int K = -1; // keeps its value
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
		for(bool before : {false, true}) // so that a kept switch shows either way
		{
			SCOPED_TRACE("kind " + std::to_string(row.kind) + " from " + std::to_string(before));
			BaseContainer data;
			for(int32_t id : ids)
				data.SetBool(id, before);
			EXPECT_TRUE(applyKindSwitchRule(data, row.kind));
			for(int i = 0; i < 22; ++i)
				EXPECT_EQ(data.GetBool(ids[i]), row.values[i] == K ? before : row.values[i] != 0) << ids[i];
			EXPECT_EQ(data.GetCount(), 22);
		}
	BaseContainer data;
	EXPECT_FALSE(applyKindSwitchRule(data, 6033));
	EXPECT_EQ(data.GetCount(), 0);
}

TEST_F(MaterialTest, ValidationResetsTheSwitchesOnlyWhenTheKindChanged)
{
	auto validate = [](BaseMaterial* m, int32_t id, int32_t value) {
		m->SetParameter(DescID(id), GeData(value));
		m->Message(MSG_DESCRIPTION_VALIDATE);
	};
	BaseMaterial* mat = newMaterial();
	BaseContainer* data = mat->GetDataInstance();
	// A user's unticked switch survives while the kind stays.
	validate(mat, MAT_USE_ALBEDO, 0);
	EXPECT_FALSE(data->GetBool(MAT_USE_ALBEDO));
	validate(mat, MAT_TYPE, MAT_TYPE_PHONG);
	EXPECT_TRUE(data->GetBool(MAT_USE_ALBEDO));
	EXPECT_TRUE(data->GetBool(MAT_USE_EXPONENT));
	validate(mat, MAT_USE_EXPONENT, 0);
	EXPECT_FALSE(data->GetBool(MAT_USE_EXPONENT));
	// Only the switches change, not the values.
	data->SetVector(MAT_ALBEDO_COLOUR, Vector(0.1, 0.2, 0.3));
	validate(mat, MAT_TYPE, MAT_TYPE_DIFFUSE);
	EXPECT_FALSE(data->GetBool(MAT_USE_SPECULAR));
	EXPECT_EQ(data->GetVector(MAT_ALBEDO_COLOUR), Vector(0.1, 0.2, 0.3));

	// A loaded material (values written straight in) keeps its switches, but
	// its first change of kind still resets them.
	BaseMaterial* loaded = newMaterial();
	data = loaded->GetDataInstance();
	data->SetInt32(MAT_TYPE, MAT_TYPE_PHONG);
	data->SetBool(MAT_USE_ALBEDO, false);
	loaded->Message(MSG_DESCRIPTION_VALIDATE);
	EXPECT_FALSE(data->GetBool(MAT_USE_ALBEDO));
	validate(loaded, MAT_TYPE, MAT_TYPE_DIFFUSE);
	EXPECT_TRUE(data->GetBool(MAT_USE_ALBEDO));
}

TEST_F(MaterialTest, UpdateReachesTheLinkedShadersInLinkOrder)
{
	ASSERT_TRUE(RegisterShaderPlugin(1099001, String("Recorder"), 0, RecordingShader::Alloc, String(), 0));
	BaseMaterial* mat = newMaterial();
	const std::vector<std::string> links = {"6118", "6069", "6294", "6074", "6064", "6200", "6205", "6274", "6052",
		"10016", "11016", "12016", "13016", "14016", "15016", "16016", "17016"};
	for(auto id = links.rbegin(); id != links.rend(); ++id) // reversed: the order must come from the links
	{
		BaseShader* shader = BaseShader::Alloc(1099001);
		shader->SetName(String(id->c_str()));
		mat->InsertShader(shader);
		mat->GetDataInstance()->SetLink(std::stoi(*id), shader);
	}
	received.clear();
	mat->Message(MSG_UPDATE);
	EXPECT_EQ(received, links);
}

TEST_F(MaterialTest, MarkingReplacesExactlyTheSixMaterialLinks)
{
	MarkMaterials replace;
	replace.omat = newMaterial();
	replace.nmat = newMaterial();
	BaseMaterial* user = newMaterial();
	BaseContainer* data = user->GetDataInstance();
	const int32_t six[] = {6259, 6269, 6306, 6325, 6326, 6330};
	for(int32_t id : six)
		data->SetLink(id, replace.omat);
	data->SetLink(6400, replace.omat);
	user->Message(MSG_MULTI_MARKMATERIALS, &replace);
	for(int32_t id : six)
		EXPECT_EQ(data->GetLink(id, doc, Mbase), replace.nmat) << id;
	EXPECT_EQ(data->GetLink(6400), replace.omat);
}

TEST_F(MaterialTest, MarkingWithoutDataMarksTheMaterialsTheKindUses)
{
	BaseMaterial* a = newMaterial();
	BaseMaterial* medium = newMaterial();
	BaseMaterial* substrate = newMaterial();
	// A blend uses its inputs only; a specular material its medium source.
	for(BaseMaterial* user : {newMaterial(MAT_TYPE_BLEND), newMaterial(MAT_TYPE_SPECULAR)})
	{
		user->GetDataInstance()->SetLink(MAT_BLEND_A, a);
		user->GetDataInstance()->SetLink(MAT_MEDIUM_SOURCE, medium);
		user->GetDataInstance()->SetLink(MAT_COAT_SUBSTRATE, substrate);
		user->Message(MSG_MULTI_MARKMATERIALS, nullptr);
		const bool blend = user->GetDataInstance()->GetInt32(MAT_TYPE) == MAT_TYPE_BLEND;
		EXPECT_EQ(a->GetBit(BIT_MATMARK), blend);
		EXPECT_EQ(medium->GetBit(BIT_MATMARK), !blend);
		EXPECT_FALSE(substrate->GetBit(BIT_MATMARK));
		a->DelBit(BIT_MATMARK);
		medium->DelBit(BIT_MATMARK);
	}
}

TEST_F(MaterialTest, AChangeMarksOnlyTheMaterialsThatUseIt)
{
	BaseMaterial* changed = newMaterial(MAT_TYPE_DIFFUSE, "changed");
	BaseMaterial* blend = newMaterial(MAT_TYPE_BLEND, "blend");
	BaseMaterial* coating = newMaterial(MAT_TYPE_COATING, "coating");
	BaseMaterial* self = newMaterial(MAT_TYPE_BLEND, "self");
	BaseMaterial* phong = newMaterial(MAT_TYPE_PHONG, "phong");
	blend->GetDataInstance()->SetLink(MAT_BLEND_B, changed);
	coating->GetDataInstance()->SetLink(MAT_COAT_SUBSTRATE, blend); // two links away
	self->GetDataInstance()->SetLink(MAT_BLEND_A, self);             // the walk must end
	phong->GetDataInstance()->SetLink(MAT_BLEND_A, changed);         // unused while its blend factor is off
	const std::pair<BaseMaterial*, bool> rows[] = {
		{changed, false}, {blend, true}, {coating, true}, {self, false}, {phong, false}};
	auto dirt = [](BaseMaterial* m) { return plugin(m)->GetDirtyCount() + m->GetDirty(DIRTYFLAGS_DATA); };
	std::vector<uint32_t> before;
	for(const auto& [mat, marked] : rows)
		before.push_back(dirt(mat));
	const int32_t events = EventCount();
	changed->Message(MSG_MATERIAL_CHANGED);
	for(size_t i = 0; i < std::size(rows); ++i)
		EXPECT_EQ(dirt(rows[i].first) > before[i], rows[i].second) << rows[i].first->GetName().GetStdString();
	EXPECT_GT(EventCount(), events);
}

TEST_F(MaterialTest, TheCycleTestEndsOnLoopsAndRefusesALoopingLink)
{
	BaseMaterial* blend = newMaterial(MAT_TYPE_BLEND);
	BaseMaterial* coating = newMaterial(MAT_TYPE_COATING);
	BaseMaterial* plain = newMaterial();
	EXPECT_TRUE(blend->SetParameter(DescID(MAT_BLEND_A), GeData(coating)));
	EXPECT_FALSE(coating->SetParameter(DescID(MAT_COAT_SUBSTRATE), GeData(blend)));
	EXPECT_EQ(coating->GetDataInstance()->GetLink(MAT_COAT_SUBSTRATE, doc, Mbase), nullptr);
	EXPECT_FALSE(blend->SetParameter(DescID(MAT_BLEND_B), GeData(blend)));
	EXPECT_TRUE(coating->SetParameter(DescID(MAT_COAT_SUBSTRATE), GeData(plain)));

	// Loops already stored, as a file may hold them: blend–coating–blend and
	// a self link.
	coating->GetDataInstance()->SetLink(MAT_COAT_SUBSTRATE, blend);
	EXPECT_TRUE(materialReaches(coating, blend, doc));
	EXPECT_TRUE(materialReaches(blend, blend, doc));
	EXPECT_FALSE(materialReaches(blend, plain, doc));
	BaseMaterial* self = newMaterial(MAT_TYPE_BLEND);
	self->GetDataInstance()->SetLink(MAT_BLEND_B, self);
	EXPECT_TRUE(materialReaches(self, self, doc));
	EXPECT_FALSE(materialReaches(self, plain, doc));
}
