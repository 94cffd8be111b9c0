uniform sampler2D	texSum;
uniform sampler2D	texSrc;
uniform float varianceY;
uniform float varianceUV;
uniform float superDynamicity;
void main()
{
   float fval3x = texture2D(texSum, gl_TexCoord[0].xy).x*texture2D(texSum, gl_TexCoord[0].xy).x*texture2D(texSum, gl_TexCoord[0].xy).x;
   float fval3y = texture2D(texSum, gl_TexCoord[0].xy).y*texture2D(texSum, gl_TexCoord[0].xy).y*texture2D(texSum, gl_TexCoord[0].xy).y;
   float fval3z = texture2D(texSum, gl_TexCoord[0].xy).z*texture2D(texSum, gl_TexCoord[0].xy).z*texture2D(texSum, gl_TexCoord[0].xy).z;
   float variance2_x = (((texture2D(texSrc, gl_TexCoord[0].xy).x) * superDynamicity + 1.0) * varianceUV);
   fval3x = (fval3x)/variance2_x;
   float val_x = (pow(2.718281828, -fval3x));
   float variance2_y = (((texture2D(texSrc, gl_TexCoord[0].xy).y) * superDynamicity + 1.0) * varianceUV);
   fval3y = (fval3y)/variance2_y;
   float val_y = (pow(2.718281828, -fval3y));
   float variance2_z = (((texture2D(texSrc, gl_TexCoord[0].xy).z) * superDynamicity + 1.0) * varianceY);
   fval3z = (fval3z)/variance2_z;
   float val_z = (pow(2.718281828, -fval3z));
   gl_FragData[0].x = val_x;
   gl_FragData[0].y = val_y;
   gl_FragData[0].z = val_z;
}
