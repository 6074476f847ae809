#version 120

// The interpolated vertex colour, as with texturing off.
void main()
{
    gl_FragColor = gl_Color;
}
