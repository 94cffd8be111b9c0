uniform sampler2D	texture0;
void main()
{
   gl_FragColor.xyz =
   (texture2D(texture0, gl_TexCoord[0].xy).xyz +
   texture2D(texture0, gl_TexCoord[1].xy).xyz +
   texture2D(texture0, gl_TexCoord[2].xy).xyz +
   texture2D(texture0, gl_TexCoord[3].xy).xyz);
}
