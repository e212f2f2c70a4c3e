#include "c4d/ge_data.h"

#include "c4d/base_container.h"
#include "c4d/base_list.h"

// The container is made as a changeable object, so that
// GetContainerInstance may change it once no other value shares it.
GeData::GeData(const BaseContainer& v) : value(std::make_shared<BaseContainer>(v))
{
}

GeData::GeData(BaseList2D* v) : value(Link{v, v ? std::weak_ptr<const char>(v->liveness()) : std::weak_ptr<const char>()})
{
}

GeData::GeData(int32_t type, std::shared_ptr<const CustomDataType> data) : value(Custom{type, std::move(data)})
{
}

const CustomDataType* GeData::GetCustomDataType(int32_t type) const
{
	const Custom* custom = std::get_if<Custom>(&value);
	return custom && custom->type == type ? custom->data.get() : nullptr;
}

BaseList2D* GeData::GetLink(BaseList2D* preset) const
{
	const Link* link = std::get_if<Link>(&value);
	return link ? link->resolve() : preset;
}

int32_t GeData::GetType() const
{
	// In the order of the alternatives of value.
	if(const Custom* custom = std::get_if<Custom>(&value))
		return custom->type;
	static const int32_t types[] = {DA_NIL, DA_LONG, DA_REAL, DA_VECTOR, DA_STRING, DA_FILENAME, DA_TIME, DA_CONTAINER, DA_ALIASLINK};
	static_assert(sizeof(types) / sizeof(types[0]) + 1 == std::variant_size_v<decltype(value)>);
	return types[value.index()];
}

const BaseContainer* GeData::GetContainer() const
{
	const auto* stored = std::get_if<std::shared_ptr<const BaseContainer>>(&value);
	return stored ? stored->get() : nullptr;
}

BaseContainer* GeData::GetContainerInstance()
{
	auto* stored = std::get_if<std::shared_ptr<const BaseContainer>>(&value);
	if(!stored)
		return nullptr;
	if(stored->use_count() > 1)
		*stored = std::make_shared<BaseContainer>(**stored);
	return const_cast<BaseContainer*>(stored->get());
}

bool GeData::operator==(const GeData& o) const
{
	const BaseContainer* container = GetContainer();
	const BaseContainer* other = o.GetContainer();
	if(container || other)
		return container && other && *container == *other;
	return value == o.value;
}

int32_t GeData::GetInt32(int32_t preset) const
{
	if(const double* real = std::get_if<double>(&value))
		return (int32_t)*real;
	return get(preset);
}

double GeData::GetFloat(double preset) const
{
	if(const int32_t* integer = std::get_if<int32_t>(&value))
		return *integer;
	return get(preset);
}
