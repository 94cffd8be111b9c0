uniform sampler2D	texture0;
uniform float deltaX;
uniform float deltaY;
void main()
{
   vec2 coords = gl_TexCoord[0].xy;
   gl_FragColor.x = texture2D(texture0, coords).x;
   coords.y += deltaY;
   gl_FragColor.x += texture2D(texture0, coords).x;
   coords.y += deltaY;
   gl_FragColor.x += texture2D(texture0, coords).x;
   coords.x += deltaX;
   gl_FragColor.x += texture2D(texture0, coords).x;
   coords.y -= deltaY;
   gl_FragColor.x += texture2D(texture0, coords).x;
   coords.y -= deltaY;
   gl_FragColor.x += texture2D(texture0, coords).x;
   coords.x += deltaX;
   gl_FragColor.x += texture2D(texture0, coords).x;
   coords.y += deltaY;
   gl_FragColor.x += texture2D(texture0, coords).x;
   coords.y += deltaY;
   gl_FragColor.x += texture2D(texture0, coords).x;
}
