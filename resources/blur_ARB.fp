!!ARBfp1.0
# One direction of the blur: five lookups, weighted by a bell curve over nine texels. The weights
# add up to one, so that a plain field stays as it is.
PARAM weight = { 0.1888, 0.2950, 0.1106, 0.0 };
TEMP sum, tap;
TEX sum, fragment.texcoord[0], texture[0], 2D;
MUL sum, sum, weight.x;
TEX tap, fragment.texcoord[1], texture[0], 2D;
MAD sum, tap, weight.y, sum;
TEX tap, fragment.texcoord[2], texture[0], 2D;
MAD sum, tap, weight.y, sum;
TEX tap, fragment.texcoord[3], texture[0], 2D;
MAD sum, tap, weight.z, sum;
TEX tap, fragment.texcoord[4], texture[0], 2D;
MAD result.color, tap, weight.z, sum;
END
