-- What changed on a host, and when: each row is a value that began at that moment, or a place that went away.
SELECT since, place.text, coalesce(value.text, ''), fact.value IS NOT NULL
FROM fact
JOIN place ON place.id = fact.place
LEFT JOIN value ON value.id = fact.value
WHERE fact.host = (SELECT id FROM host WHERE name = {host})
  AND NOT fact.void
  -- At the pointer or below it.
  AND ({pointer} = '*' OR substr(place.pointer || '/', 1, length({pointer}) + 1) = {pointer} || '/')
  AND (place.text GLOB {glob} OR place.text GLOB {glob} || '/*' OR place.text GLOB {glob} || '[[]*')
ORDER BY since, place.text;
