-- Facts that hold now and are less: as numbers where both are, else in natural order, by their key. Beside a number,
-- natural order is for what begins with a digit: 15.0.18 beside 15.
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
WHERE CASE {number}
    WHEN '' THEN coalesce(shown.sorted, shown.text) < {sorted}
    ELSE CASE WHEN shown.number IS NOT NULL THEN shown.number < CAST({number} AS REAL)
      ELSE shown.text GLOB '[0-9]*' AND coalesce(shown.sorted, shown.text) < {sorted} END
  END
ORDER BY host.name, place.text;
