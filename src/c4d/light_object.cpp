#include "c4d/light_object.h"

#include "c4d/vector_matrix.h"

void SetLightDefaults(BaseContainer& data)
{
	data.SetVector(LIGHT_COLOR, Vector(1, 1, 1));
	data.SetFloat(LIGHT_BRIGHTNESS, 1.0);
	data.SetInt32(LIGHT_TYPE, LIGHT_TYPE_OMNI);
	data.SetFloat(LIGHT_AREADEFINITION_SIZEX, 200.0);
	data.SetFloat(LIGHT_AREADEFINITION_SIZEY, 200.0);
	data.SetFloat(LIGHT_AREADEFINITION_SIZEZ, 200.0);
	data.SetInt32(LIGHT_AREADEFINITION_SHAPE, LIGHT_AREADEFINITION_SHAPE_RECTANGLE);
}
