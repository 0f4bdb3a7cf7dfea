!!ARBfp1.0
# The glow over the picture: the blurred color, weakened the more the darker it is, so that lines
# glow and a faint haze does not gray the black. Black stays exactly black.
PARAM curve = { 0.3, 0.7, 0.0, 0.0 };
TEMP glow, share;
TEX glow, fragment.texcoord[0], texture[0], 2D;
MAD share, glow, curve.y, curve.x;
MUL glow.rgb, glow, share;
MUL result.color.rgb, glow, fragment.color;
MOV result.color.a, fragment.color.a;
END
