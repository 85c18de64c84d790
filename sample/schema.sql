-- A small trading company: who sells what to whom.

PRAGMA application_id = 0x6D697265;
PRAGMA user_version = 1;

CREATE TABLE countries(
  code CHAR(2) PRIMARY KEY,
  name VARCHAR(60) NOT NULL UNIQUE
) WITHOUT ROWID;

CREATE TABLE suppliers(
  id INTEGER PRIMARY KEY,
  name VARCHAR(80) NOT NULL UNIQUE,
  country CHAR(2) NOT NULL REFERENCES countries,
  email VARCHAR(120),
  rating DOUBLE PRECISION CHECK (rating BETWEEN 0 AND 5)
);

CREATE TABLE products(
  id INTEGER PRIMARY KEY,
  supplier_id INTEGER NOT NULL REFERENCES suppliers,
  name VARCHAR(80) NOT NULL,
  category VARCHAR(30) NOT NULL,
  price DECIMAL(10,2) NOT NULL CHECK (price > 0),
  tax_rate DECIMAL(4,3) NOT NULL DEFAULT 0.19,
  gross_price DECIMAL(10,2) GENERATED ALWAYS AS (round(price * (1 + tax_rate), 2)) STORED,
  datasheet XML,
  picture BLOB,
  discontinued BOOLEAN NOT NULL DEFAULT FALSE
);
CREATE INDEX products_by_supplier ON products(supplier_id);
CREATE INDEX products_by_category ON products(category, name);

CREATE TABLE employees(
  id INTEGER PRIMARY KEY,
  manager_id INTEGER REFERENCES employees,
  name VARCHAR(80) NOT NULL,
  title VARCHAR(40) NOT NULL,
  hired DATE NOT NULL,
  retired DATE,
  salary DECIMAL(9,2) NOT NULL
);
CREATE INDEX employees_by_manager ON employees(manager_id);

CREATE TABLE customers(
  id INTEGER PRIMARY KEY AUTOINCREMENT,
  name VARCHAR(80) NOT NULL,
  email VARCHAR(120),
  phone VARCHAR(30),
  city VARCHAR(60) NOT NULL,
  country CHAR(2) NOT NULL REFERENCES countries,
  since DATE NOT NULL,
  notes CLOB
);
CREATE UNIQUE INDEX customers_by_email ON customers(lower(email));
CREATE INDEX customers_by_country ON customers(country, city);

CREATE TABLE orders(
  id INTEGER PRIMARY KEY AUTOINCREMENT,
  customer_id INTEGER NOT NULL REFERENCES customers,
  employee_id INTEGER REFERENCES employees,
  ordered TIMESTAMP NOT NULL,
  shipped TIMESTAMP,
  status CHAR(1) NOT NULL CHECK (status IN ('N', 'P', 'S', 'C'))
);
CREATE INDEX orders_by_customer ON orders(customer_id);
CREATE INDEX orders_by_date ON orders(ordered);
CREATE INDEX orders_to_ship ON orders(ordered) WHERE shipped IS NULL;

CREATE TABLE order_lines(
  order_id INTEGER NOT NULL REFERENCES orders ON DELETE CASCADE,
  line INTEGER NOT NULL,
  product_id INTEGER NOT NULL REFERENCES products,
  quantity INTEGER NOT NULL CHECK (quantity > 0),
  unit_price DECIMAL(10,2) NOT NULL,
  amount DECIMAL(12,2) GENERATED ALWAYS AS (quantity * unit_price) VIRTUAL,
  PRIMARY KEY (order_id, line)
) WITHOUT ROWID;
CREATE INDEX order_lines_by_product ON order_lines(product_id);

CREATE TABLE stock(
  warehouse VARCHAR(20) NOT NULL,
  product_id INTEGER NOT NULL REFERENCES products,
  quantity BIGINT NOT NULL,
  counted TIMESTAMP,
  PRIMARY KEY (warehouse, product_id)
) WITHOUT ROWID;

CREATE VIEW order_totals AS
  SELECT o.id, o.customer_id, o.ordered, o.status, sum(l.amount) AS total
  FROM orders AS o JOIN order_lines AS l ON l.order_id = o.id GROUP BY o.id;

CREATE VIEW customer_revenue AS
  SELECT c.id, c.name, c.country, count(t.id) AS orders, coalesce(sum(t.total), 0) AS revenue
  FROM customers AS c LEFT JOIN order_totals AS t ON t.customer_id = c.id AND t.status <> 'C' GROUP BY c.id;

CREATE VIEW open_orders AS
  SELECT id, customer_id, ordered FROM orders WHERE shipped IS NULL AND status <> 'C';

CREATE VIEW reporting_lines AS
  WITH RECURSIVE chain(id, name, path) AS (
    SELECT id, name, name FROM employees WHERE manager_id IS NULL
    UNION ALL
    SELECT e.id, e.name, chain.path || ' > ' || e.name FROM employees AS e JOIN chain ON e.manager_id = chain.id)
  SELECT id, name, path FROM chain;

CREATE TRIGGER order_cancelled AFTER UPDATE OF status ON orders WHEN new.status = 'C'
BEGIN
  UPDATE orders SET shipped = NULL WHERE id = new.id;
END;
