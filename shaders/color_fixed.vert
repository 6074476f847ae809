#version 120

// Places the vertex as the fixed-function pipeline would and passes its colour on.
void main()
{
    gl_FrontColor = gl_Color;
    gl_BackColor = gl_Color;
    gl_Position = ftransform();
}
