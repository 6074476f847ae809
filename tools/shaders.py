"""Writes the GLSL programs the game loads from shaders/.

Each program is a vertex stage NAME.vert and a fragment stage NAME.frag; none has a
geometry stage. Every stage is GLSL 1.20 (OpenGL 2.1) and reads the fixed-function
inputs the renderer feeds through client arrays: gl_Vertex, gl_Color,
gl_MultiTexCoord0 and the matrices loaded with glLoadMatrix. The sampled image is
always the uniform "texture" on texture unit 0 ("texture" is a plain identifier up to
GLSL 1.20, a built-in function from 1.30 on, which is why no stage asks for more).
"""
import math
import pathlib

VERSION = "#version 120\n"

# Vertex stages.

COLOR_VERT = VERSION + """
// Places the vertex as the fixed-function pipeline would and passes its colour on.
void main()
{
    gl_FrontColor = gl_Color;
    gl_BackColor = gl_Color;
    gl_Position = ftransform();
}
"""

TEXTURE_VERT = VERSION + """
// Places the vertex as the fixed-function pipeline would and passes its colour and
// its first texture coordinate (through the texture matrix) on.
void main()
{
    gl_FrontColor = gl_Color;
    gl_BackColor = gl_Color;
    gl_TexCoord[0] = gl_TextureMatrix[0] * gl_MultiTexCoord0;
    gl_Position = ftransform();
}
"""

# Fragment stages.

COLOR_FRAG = VERSION + """
// The interpolated vertex colour, as with texturing off.
void main()
{
    gl_FragColor = gl_Color;
}
"""

TEXTURE_FRAG = VERSION + """
// The texel times the interpolated vertex colour, as GL_MODULATE does.
uniform sampler2D texture;

void main()
{
    gl_FragColor = texture2D(texture, gl_TexCoord[0].st) * gl_Color;
}
"""

# Luminance (Rec. 709 weights) at and below which a colour counts as dark.
EXTRACT_THRESHOLD = 0.6

COLOR_EXTRACT_FRAG = VERSION + """
// Bright pass: keeps the part of a colour whose luminance rises above THRESHOLD.
// A colour at the threshold or darker becomes black, white stays white, and in between
// the colour keeps its hue, scaled by how far its luminance reaches past the threshold.
uniform sampler2D texture;

const float THRESHOLD = {threshold:.2f};
const vec3 LUMINANCE = vec3(0.2126, 0.7152, 0.0722);

void main()
{{
    vec4 texel = texture2D(texture, gl_TexCoord[0].st) * gl_Color;
    float luminance = dot(texel.rgb, LUMINANCE);
    float kept = max(luminance - THRESHOLD, 0.0) / (1.0 - THRESHOLD);
    gl_FragColor = vec4(texel.rgb * kept, texel.a);
}}
""".format(threshold=EXTRACT_THRESHOLD)

# The blur kernel: weights exp(-i^2 / (2 sigma^2)) for offsets -RADIUS..RADIUS in texels,
# scaled so that they sum to 1.
BLUR_RADIUS = 5
BLUR_SIGMA = 2.0


def blur_weights():
    raw = [math.exp(-i * i / (2.0 * BLUR_SIGMA * BLUR_SIGMA)) for i in range(BLUR_RADIUS + 1)]
    total = raw[0] + 2.0 * sum(raw[1:])
    return [w / total for w in raw]


def blur_frag(axis):
    direction = "vec2(texelSize, 0.0)" if axis == "x" else "vec2(0.0, texelSize)"
    name = "rows" if axis == "x" else "columns"
    weights = blur_weights()
    taps = "\n".join(
        "    sum += (texture2D(texture, st + {d} * {i:.1f}) + texture2D(texture, st - {d} * {i:.1f}))"
        " * {w:.8f};".format(d="offset", i=float(i), w=weights[i])
        for i in range(1, BLUR_RADIUS + 1))
    return VERSION + """
// One half of a separable Gaussian blur (sigma {sigma} texels, {count} taps) along the {name};
// the other half runs the same kernel along the other axis. Weights sum to 1, so an even
// image stays as it is.
uniform sampler2D texture;
// Distance between neighbouring texels along the {name}, in texture coordinates
// (1 / the texture's {extent}); 0 leaves the image unblurred.
uniform float texelSize;

void main()
{{
    vec2 st = gl_TexCoord[0].st;
    vec2 offset = {direction};
    vec4 sum = texture2D(texture, st) * {w0:.8f};
{taps}
    gl_FragColor = sum * gl_Color;
}}
""".format(sigma=BLUR_SIGMA, count=2 * BLUR_RADIUS + 1, name=name,
           extent="width" if axis == "x" else "height",
           direction=direction, w0=weights[0], taps=taps)


# The seven programs of the renderer's shader set.
PROGRAMS = {
    "color_fixed": (COLOR_VERT, COLOR_FRAG),
    "texture_fixed": (TEXTURE_VERT, TEXTURE_FRAG),
    "color": (COLOR_VERT, COLOR_FRAG),
    "texture": (TEXTURE_VERT, TEXTURE_FRAG),
    "color_extract": (TEXTURE_VERT, COLOR_EXTRACT_FRAG),
    "hblur": (TEXTURE_VERT, blur_frag("x")),
    "vblur": (TEXTURE_VERT, blur_frag("y")),
}


def generate(out_root: pathlib.Path, args=None):
    folder = pathlib.Path(out_root) / "shaders"
    folder.mkdir(parents=True, exist_ok=True)
    for name, (vert, frag) in PROGRAMS.items():
        for suffix, text in ((".vert", vert), (".frag", frag)):
            path = folder / (name + suffix)
            path.write_bytes(text.lstrip("\n").encode("ascii"))
            print(f"   {path}")
