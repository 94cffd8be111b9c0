uniform sampler2D	texture0;
uniform float deltaX;
uniform float deltaY;
void main()
{
   vec2 coords = gl_TexCoord[0].xy;
   gl_FragColor.xyz = texture2D(texture0, coords).xyz;
   coords.y += deltaY;
   gl_FragColor.xyz += texture2D(texture0, coords).xyz;
   coords.y += deltaY;
   gl_FragColor.xyz += texture2D(texture0, coords).xyz;
   coords.x += deltaX;
   gl_FragColor.xyz += texture2D(texture0, coords).xyz;
   coords.y -= deltaY;
   gl_FragColor.xyz += texture2D(texture0, coords).xyz;
   coords.y -= deltaY;
   gl_FragColor.xyz += texture2D(texture0, coords).xyz;
   coords.x += deltaX;
   gl_FragColor.xyz += texture2D(texture0, coords).xyz;
   coords.y += deltaY;
   gl_FragColor.xyz += texture2D(texture0, coords).xyz;
   coords.y += deltaY;
   gl_FragColor.xyz += texture2D(texture0, coords).xyz;
}
