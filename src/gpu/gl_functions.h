// The GL entry points. Not to be included where Qt is.
#pragma once

#define GLEW_NO_GLU
#include <GL/glew.h>
