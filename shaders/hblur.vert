#version 120

// Places the vertex as the fixed-function pipeline would and passes its colour and
// its first texture coordinate (through the texture matrix) on.
void main()
{
    gl_FrontColor = gl_Color;
    gl_BackColor = gl_Color;
    gl_TexCoord[0] = gl_TextureMatrix[0] * gl_MultiTexCoord0;
    gl_Position = ftransform();
}
