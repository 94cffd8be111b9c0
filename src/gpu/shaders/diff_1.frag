uniform sampler2D	texture0;
void main()
{
   gl_FragColor.x = abs(texture2D(texture0, gl_TexCoord[0].xy).x - texture2D(texture0, gl_TexCoord[1].xy).x);
}
