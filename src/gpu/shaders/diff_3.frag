uniform sampler2D	texture0;
void main()
{
   gl_FragColor.xyz = abs(texture2D(texture0, gl_TexCoord[0].xy).xyz - texture2D(texture0, gl_TexCoord[1].xy).xyz);
}
