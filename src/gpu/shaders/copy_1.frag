uniform sampler2D	texture0;
void main()
{
   gl_FragColor.x = texture2D(texture0, gl_TexCoord[0].xy).x;
}
