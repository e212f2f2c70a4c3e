#include "c4d/variable_tags.h"

#include "c4d/base_material.h"
#include "c4d/base_object.h"
#include "c4d/geometry_test_helpers.h"
#include "c4d/texture_tag.h"

#include <gtest/gtest.h>

TEST(HostTags, AllocGivesTheClassOfTheTypeWithItsDefaults)
{
	Owned<BaseTag> uvw(BaseTag::Alloc(Tuvw)), points(BaseTag::Alloc(Tpointselection));
	Owned<BaseTag> texture(BaseTag::Alloc(Ttexture)), phong(BaseTag::Alloc(Tphong));
	EXPECT_NE(dynamic_cast<UVWTag*>(uvw.get()), nullptr);
	EXPECT_NE(dynamic_cast<SelectionTag*>(Owned<BaseTag>(BaseTag::Alloc(Tpolygonselection)).get()), nullptr);
	ASSERT_NE(dynamic_cast<SelectionTag*>(points.get()), nullptr);
	EXPECT_EQ(points->GetType(), Tpointselection);
	EXPECT_NE(dynamic_cast<TextureTag*>(texture.get()), nullptr);
	EXPECT_EQ(SelectionTag::Alloc(Tuvw), nullptr);

	const BaseContainer* t = texture->GetDataInstance();
	EXPECT_EQ(t->GetFloat(TEXTURETAG_OFFSETX, -1) + t->GetFloat(TEXTURETAG_OFFSETY, -1), 0.0);
	EXPECT_EQ(t->GetFloat(TEXTURETAG_LENGTHX), 1.0);
	EXPECT_EQ(t->GetFloat(TEXTURETAG_LENGTHY), 1.0);
	EXPECT_EQ(t->GetInt32(TEXTURETAG_PROJECTION), TEXTURETAG_PROJECTION_UVW);
	EXPECT_EQ(t->GetString(TEXTURETAG_RESTRICTION, String("none")), String());
	const BaseContainer* p = phong->GetDataInstance();
	EXPECT_TRUE(p->GetBool(PHONGTAG_PHONG_ANGLELIMIT));
	EXPECT_DOUBLE_EQ(p->GetFloat(PHONGTAG_PHONG_ANGLE), 1.3962634015954636);
	EXPECT_FALSE(p->GetBool(PHONGTAG_PHONG_USEEDGES, true));
}

TEST(HostTags, ClonesCarryNameParametersAndData)
{
	Owned<BaseObject> owner(BaseObject::Alloc(Onull));
	owner->SetMl(Matrix(Vector(5, 0, 0), Vector(2, 0, 0), Vector(0, 2, 0), Vector(0, 0, 2)));
	UVWTag* uvw = UVWTag::Alloc(2);
	uvw->SetName(String("uv"));
	uvw->Set(1, {Vector(0.25, 0.5, 0), Vector(1, 0, 0), Vector(0, 1, 0), Vector(1, 1, 0)});
	SelectionTag* selection = SelectionTag::Alloc(Tpolygonselection);
	selection->GetBaseSelect()->SelectAll(2, 4);
	TextureTag* texture = TextureTag::Alloc();
	Owned<BaseMaterial> material(BaseMaterial::Alloc(Mmaterial));
	texture->SetMaterial(material.get());
	texture->SetMl(Matrix(Vector(1, 2, 3), Vector(10, 0, 0), Vector(0, 10, 0), Vector(0, 0, 10)));
	owner->InsertTag(uvw);
	owner->InsertTag(selection);
	owner->InsertTag(texture);
	// The tag's world matrix is the object's times its own.
	EXPECT_EQ(texture->GetMg(), Matrix(Vector(7, 4, 6), Vector(20, 0, 0), Vector(0, 20, 0), Vector(0, 0, 20)));

	// Cloned through the base class, each keeps its class and data.
	Owned<BaseTag> uvwCopy(static_cast<BaseTag*>(uvw)->GetClone());
	Owned<BaseTag> selectionCopy(static_cast<BaseTag*>(selection)->GetClone());
	Owned<BaseTag> textureCopy(static_cast<BaseTag*>(texture)->GetClone());
	const UVWTag* u = dynamic_cast<UVWTag*>(uvwCopy.get());
	const SelectionTag* s = dynamic_cast<SelectionTag*>(selectionCopy.get());
	const TextureTag* t = dynamic_cast<TextureTag*>(textureCopy.get());
	ASSERT_TRUE(u && s && t);
	EXPECT_EQ(u->GetName(), String("uv"));
	ASSERT_EQ(u->GetDataCount(), 2);
	EXPECT_EQ(u->Get(1).a, Vector(0.25, 0.5, 0));
	EXPECT_EQ(u->Get(1).d, Vector(1, 1, 0));
	EXPECT_EQ(*s->GetBaseSelect(), *selection->GetBaseSelect());
	EXPECT_EQ(t->GetMaterial(), material.get());
	// A free tag is placed by its own matrix.
	EXPECT_EQ(t->GetMg(), texture->GetMl());
	// A link to something that is no material gives no material.
	texture->GetDataInstance()->SetLink(TEXTURETAG_MATERIAL, owner.get());
	EXPECT_EQ(texture->GetMaterial(), nullptr);
}
