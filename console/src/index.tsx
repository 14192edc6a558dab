// Starts the page: language and theme before the first paint, then what it follows.
import "@patternfly/react-core/dist/styles/base.css";
import "./page.css";
import { createRoot } from "react-dom/client";
import { setLanguage } from "./host/language.ts";
import { followChanges } from "./host/lists.ts";
import { followStatus } from "./host/status.ts";
import { followTheme } from "./host/theme.ts";
import { Page } from "./page.tsx";

setLanguage();
followTheme();
followStatus();
followChanges();
createRoot(document.getElementById("app")!).render(<Page />);
