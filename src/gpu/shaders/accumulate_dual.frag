uniform sampler2D	texDbl1;
uniform sampler2D	texDbl2;
uniform sampler2D	texDbl1X;
uniform sampler2D	texDbl2X;
uniform sampler2D	texture0;
uniform sampler2D	texture0X;
void main()
{
   gl_FragData[0].xyz = texture2D(texDbl1, gl_TexCoord[0].xy).xyz  + texture2D(texDbl1X, gl_TexCoord[2].xy).xyz + texture2D(texDbl2X, gl_TexCoord[3].xy).xyz;
   gl_FragData[1].xyz = texture2D(texDbl2, gl_TexCoord[1].xy).xyz + texture2D(texture0, gl_TexCoord[4].xy).xyz*texture2D(texDbl1X, gl_TexCoord[2].xy).xyz + texture2D(texture0X, gl_TexCoord[5].xy).xyz*texture2D(texDbl2X, gl_TexCoord[3].xy).xyz;
}
