#include "TransferText.h"

namespace tessaly
{

namespace
{

const char *const simpleClassification1D = R"(uniform sampler1D transferFunction; 
uniform float correctionFactor; 

void getClassification(inout Ray ray, inout SamplePoint current, inout SamplePoint previous, inout vec4 outColor)
{
    current.color = texture1DLod(transferFunction, current.value.r, 0.0); 
}

)";

const char *const simpleClassification2D = R"(uniform sampler2D transferFunction; 
uniform float correctionFactor; 

void getClassification(inout Ray ray, inout SamplePoint current, inout SamplePoint previous, inout vec4 outColor)
{
    float scaledValue = (current.value.r * 256.0); 
    float row = floor(scaledValue); 
    float column = scaledValue - row;
    row /= 256.0; 
    vec2 mapIndex = vec2(column, row); 
    current.color =  texture2DLod(transferFunction, mapIndex, 0.0); 
}

)";

const char *const simpleCompositing =
    R"(void applyCorrectionFactor(inout Ray ray, inout SamplePoint current, inout SamplePoint previous, inout vec4 outColor)
{
    current.color.a = 1.0 - pow((1.0 - current.color.a), (current.stepsize * correctionFactor) );
    current.color.rgb *= current.color.a; 
}

void compositeColor(inout Ray ray, inout SamplePoint current, inout SamplePoint previous, inout vec4 outColor)
{
    outColor += ((1.0 - outColor.a) * current.color); 
}

)";

const char *const preintClassification1D = R"(uniform sampler2D preIntTable; 

void getClassification(inout Ray ray, inout SamplePoint current, inout SamplePoint previous, inout vec4 outColor)
{
    current.color =  texture2DLod(preIntTable, vec2(current.value.r, previous.value.r), 0.0); 
}

)";

const char *const preintClassification2D = R"(uniform sampler2D preIntTable; 
uniform sampler2D transferFunction; 

vec2 getTextureCoordinate(in float texcoord) 
{
    float scaledValue = (texcoord * 256.0);
    float row = floor(scaledValue);
    float column = scaledValue - row;
    row /= 256.0;
    return vec2(column, row); 
}

vec4 getTextureCoordinates(in vec2 texcoords) 
{
    vec2 scaledValue = (texcoords * vec2(256.0)); 
    vec2 row = floor(scaledValue);
    vec2 column = scaledValue - row;
    row /= vec2(256.0);
    return vec4(column.x, row.x, column.y, row.y); 
}

void getClassification(inout Ray ray, inout SamplePoint current, inout SamplePoint previous, inout vec4 outColor)
{
    if( abs(current.value.r - previous.value.r) <= 1.0/65535.0) 
    {
        vec2 texCoord = getTextureCoordinate(current.value.r); 
        current.color = texture2DLod(transferFunction, texCoord, 0.0); 
        current.color.rgb *= current.color.a; 
    }
    else
    {
        vec4 texCoords = getTextureCoordinates(vec2( current.value.r, previous.value.r)); 
        vec4 color1 = texture2DLod(preIntTable, texCoords.xy, 0.0); 
        vec4 color2 = texture2DLod(preIntTable, texCoords.zw, 0.0); 
        float weight = 1.0 / (65536.0 * (current.value.r - previous.value.r));
        current.color = weight * (color1 - color2); 
    }
}

)";

// The table's colour is premultiplied, so the correction rescales it instead of multiplying it by opacity
// once more.
const char *const preintCompositing = R"(uniform float correctionFactor; 

void applyCorrectionFactor(inout Ray ray, inout SamplePoint current, inout SamplePoint previous, inout vec4 outColor)
{
    float oldAlpha = current.color.a; 
    current.color.a = 1.0 - pow((1.0 - current.color.a), (current.stepsize * correctionFactor) );
    current.color.rgb *= current.color.a / oldAlpha; 
}

void compositeColor( inout Ray ray, inout SamplePoint current, inout SamplePoint previous, inout vec4 outColor) 
{
    outColor += ((1.0 - outColor.a) * current.color); 
}

)";

} // namespace

std::string simpleTransferfunctionText(std::uint32_t form)
{
    if(form > 1)
        return {};
    return std::string(form == 0 ? simpleClassification1D : simpleClassification2D) + simpleCompositing;
}

std::string preintTransferFunctionText(std::uint32_t form)
{
    return std::string(form == 0 ? preintClassification1D : preintClassification2D) + preintCompositing;
}

} // namespace tessaly
