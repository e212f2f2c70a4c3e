#include "support/decimal_comma_locale.h"

#include <clocale>
#include <initializer_list>

namespace VelornTest
{

const char* useDecimalCommaLocale()
{
	static const char* const names[] = {
		"de_DE.UTF-8", "de_DE.utf8", "fr_FR.UTF-8", "fr_FR.utf8", "German_Germany.1252", "de-DE"};
	for(const char* name : names)
		if(std::setlocale(LC_ALL, name))
			return name;
	return nullptr;
}

} // namespace VelornTest
