#include "c4d/node_defaults.h"

#include <map>
#include <mutex>

namespace
{

struct Registry
{
	std::mutex lock;
	std::map<int32_t, NodeDefaults> byType;
};

Registry& registry()
{
	static Registry instance;
	return instance;
}

} // namespace

void RegisterNodeDefaults(int32_t type, NodeDefaults init)
{
	Registry& r = registry();
	std::lock_guard<std::mutex> hold(r.lock);
	if(init)
		r.byType[type] = std::move(init);
	else
		r.byType.erase(type);
}

void ApplyNodeDefaults(BaseList2D& node)
{
	NodeDefaults init;
	{
		Registry& r = registry();
		std::lock_guard<std::mutex> hold(r.lock);
		const auto found = r.byType.find(node.GetType());
		if(found == r.byType.end())
			return;
		init = found->second;
	}
	init(node);
}
