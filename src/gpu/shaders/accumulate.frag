uniform sampler2D	texDbl1;
uniform sampler2D	texDbl2;
uniform sampler2D	texture0;
void main()
{
   gl_FragData[0].xyz = texture2D(texDbl1, gl_TexCoord[0].xy).xyz  + texture2D(texDbl2, gl_TexCoord[1].xy).xyz*texture2D(texture0, gl_TexCoord[2].xy).xyz;
}
