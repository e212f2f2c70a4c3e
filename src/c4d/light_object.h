#pragma once

#include "c4d/base_container.h"

// The parameters of the host's light object (Olight).
enum
{
	// Vector colour and real brightness (1 is 100 %).
	LIGHT_COLOR = 90000,
	LIGHT_BRIGHTNESS = 90001,
	// Long: LIGHT_TYPE_*.
	LIGHT_TYPE = 90002,
	// Reals: the size of an area light along its x, y and z.
	LIGHT_AREADEFINITION_SIZEX = 100010,
	LIGHT_AREADEFINITION_SIZEY = 100011,
	LIGHT_AREADEFINITION_SIZEZ = 100012,
	// Link: the object whose shape an area light of shape LIGHT_AREADEFINITION_SHAPE_OBJECT takes.
	LIGHT_AREADEFINITION_OBJECT = 100014,
	// Long: LIGHT_AREADEFINITION_SHAPE_*.
	LIGHT_AREADEFINITION_SHAPE = 100015,
};

enum
{
	LIGHT_TYPE_OMNI = 0,
	LIGHT_TYPE_SPOT = 1,
	LIGHT_TYPE_AREA = 8,
};

enum
{
	LIGHT_AREADEFINITION_SHAPE_DISC = 0,
	LIGHT_AREADEFINITION_SHAPE_RECTANGLE = 1,
	LIGHT_AREADEFINITION_SHAPE_SPHERE = 2,
	LIGHT_AREADEFINITION_SHAPE_CYLINDER = 3,
	LIGHT_AREADEFINITION_SHAPE_CUBE = 4,
	LIGHT_AREADEFINITION_SHAPE_HEMISPHERE = 5,
	LIGHT_AREADEFINITION_SHAPE_OBJECT = 6,
};

// The values of a new light: a white omni light of 100 %, an area of 200
// by 200 by 200 units of rectangle shape.
void SetLightDefaults(BaseContainer& data);
