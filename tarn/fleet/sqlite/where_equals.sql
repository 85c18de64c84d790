-- Facts that hold now and have this value.
WITH wanted AS (
  SELECT id FROM place WHERE pointer = {pointer} AND text GLOB {glob}
  UNION ALL
  SELECT id FROM place WHERE {pointer} = '*'
), shown AS (
  SELECT host, place, text, number, sorted FROM present JOIN value ON value.id = present.value WHERE place IN wanted
  UNION ALL
  SELECT host, place, text, number, sorted FROM latest WHERE place IN wanted
)
SELECT host.name, place.text, shown.text
FROM shown
JOIN host ON host.id = shown.host
JOIN place ON place.id = shown.place
WHERE shown.text = {value}
ORDER BY host.name, place.text;
