-- Facts that hold now and have this text in them.
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
WHERE instr(shown.text, {value}) > 0
ORDER BY host.name, place.text;
