-- The functions that user-defined text calls on the right side of its fields.
--
-- Each returns a table whose first element names the kind and whose other elements are the
-- arguments exactly as given; the parser flattens nested tables, so the vectors of an animation
-- arrive as their tag and components. Arguments are passed on whatever their number: checking
-- the count is the handlers' work, so that "uint(1, 2)" is reported rather than cut short.

function vec2(...) return { "vec2", ... } end
function vec3(...) return { "vec3", ... } end
function vec4(...) return { "vec4", ... } end
function uint(...) return { "uint", ... } end

-- argument(n): the number of the argument that drives a property.
function argument(...) return { "argument", ... } end

-- animation(arg, time, value, time, value, ...): float keys along argument arg.
function animation(...) return { "animation", ... } end

-- anim(time, value, time, value, ...): float keys with no argument number.
function anim(...) return { "anim", ... } end

-- animation_vecN(arg, time, vecN(...), time, vecN(...), ...): vector keys along argument arg.
function animation_vec2(...) return { "animation_vec2", ... } end
function animation_vec3(...) return { "animation_vec3", ... } end
function animation_vec4(...) return { "animation_vec4", ... } end

-- array(a, b, c, ...): a named list of numbers.
function array(...) return { "array", ... } end

-- The scene material's own parameters, read by the material handler: diffuse = DIFFUSE_COLOR().
function AMBIENT_COLOR(...) return { "AMBIENT_COLOR", ... } end
function DIFFUSE_COLOR(...) return { "DIFFUSE_COLOR", ... } end
function SPECULAR_LEVEL(...) return { "SPECULAR_LEVEL", ... } end
function GLOSSINESS(...) return { "GLOSSINESS", ... } end
function SELF_ILLUMINATION_COLOR(...) return { "SELF_ILLUMINATION_COLOR", ... } end
function DIFFUSE_COLOR_AMOUNT(...) return { "DIFFUSE_COLOR_AMOUNT", ... } end
function SPECULAR_COLOR_AMOUNT(...) return { "SPECULAR_COLOR_AMOUNT", ... } end
function SPECULAR_LEVEL_AMOUNT(...) return { "SPECULAR_LEVEL_AMOUNT", ... } end
function GLOSSINESS_AMOUNT(...) return { "GLOSSINESS_AMOUNT", ... } end
function SELF_ILLUMINATION_AMOUNT(...) return { "SELF_ILLUMINATION_AMOUNT", ... } end
function OPACITY_AMOUNT(...) return { "OPACITY_AMOUNT", ... } end
function FILTER_COLOR_AMOUMT(...) return { "FILTER_COLOR_AMOUMT", ... } end
function BUMP_AMOUNT(...) return { "BUMP_AMOUNT", ... } end
function REFLECTION_AMOUNT(...) return { "REFLECTION_AMOUNT", ... } end
function REFRACTION_AMOUNT(...) return { "REFRACTION_AMOUNT", ... } end
function DISPLACEMENT_AMOUNT(...) return { "DISPLACEMENT_AMOUNT", ... } end
function DECAL_UV_OFFSET(...) return { "DECAL_UV_OFFSET", ... } end
function DIFFUSE_UV_OFFSET(...) return { "DIFFUSE_UV_OFFSET", ... } end
function AMBIENT_OCCLUSION_UV_OFFSET(...) return { "AMBIENT_OCCLUSION_UV_OFFSET", ... } end
