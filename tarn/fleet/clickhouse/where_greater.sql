-- Facts that hold now and are greater: as numbers where both are, else in natural order, by a key in which a
-- character that tells the length stands before each run of digits. Beside a number, natural order is for what begins
-- with a digit: 15.0.18 beside 15.
SELECT host, place, newest
FROM (
  -- The newest row of each host and place.
  SELECT host, place, argMax(value, since) AS newest, argMax(there, since) AS holds
  FROM fact
  WHERE pointer >= if({pointer} = '*', '', {pointer}) AND pointer <= if({pointer} = '*', '\xff', {pointer})
  GROUP BY pointer, place, host
  UNION ALL
  SELECT host, place, argMax(value, since) AS newest, toUInt8(1) AS holds
  FROM latest
  WHERE pointer >= if({pointer} = '*', '', {pointer}) AND pointer <= if({pointer} = '*', '\xff', {pointer})
  GROUP BY pointer, place, host
)
WHERE holds = 1 AND place LIKE {like}
  -- Each value is compared once.
  AND newest IN (
    SELECT value
    FROM (
      SELECT DISTINCT value FROM fact
      WHERE pointer >= if({pointer} = '*', '', {pointer}) AND pointer <= if({pointer} = '*', '\xff', {pointer})
      UNION ALL
      SELECT DISTINCT value FROM latest
      WHERE pointer >= if({pointer} = '*', '', {pointer}) AND pointer <= if({pointer} = '*', '\xff', {pointer})
    )
    WHERE if({number} != '' AND match(value, '^[-+]?[0-9]{1,18}([.][0-9]{1,18})?([eE][-+]?[0-9]{1,3})?$'),
        toFloat64OrZero(value) > toFloat64OrZero({number}),
        ({number} = '' OR match(value, '^[0-9]')) AND arrayStringConcat(arrayMap(run -> concat(
          if(match(run, '^[0-9]'), reinterpretAsString(toUInt8(47 + least(length(run), 79))), ''), run),
          extractAll(value, '[0-9]+|[^0-9]+'))) > {sorted})
  )
ORDER BY host, place
