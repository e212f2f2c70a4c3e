#include "c4d/channel_data.h"

void VolumeData::IlluminanceSimple(Vector* diffuse, Vector* specular, double)
{
	*diffuse = Vector();
	*specular = Vector();
}

Vector VolumeData::TraceColor(const Vector&, double)
{
	return Vector();
}
