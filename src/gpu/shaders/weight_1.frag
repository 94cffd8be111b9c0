uniform sampler2D	texSum;
uniform sampler2D	texSrc;
uniform float variance;
uniform float superDynamicity;
void main()
{
   float fval3 = texture2D(texSum, gl_TexCoord[0].xy).x*texture2D(texSum, gl_TexCoord[0].xy).x*texture2D(texSum, gl_TexCoord[0].xy).x;
   float variance2 = (((256.0 - texture2D(texSrc, gl_TexCoord[0].xy).x) * superDynamicity + 1.0) * variance);
   fval3 = (fval3)/variance2;
   float val = (pow(2.718281828, -fval3));
   gl_FragData[0].x = val;
   gl_FragData[0].y = val;
   gl_FragData[0].z = val;
}
